#pragma once

// What a mirror shares between its snapshots: per source, immutable pieces held by shared
// pointers. A change replaces only the piece it touches; the clips are split into a fixed number
// of chunks by a hash of their identifier, so that a change copies one chunk of pointers and the
// table of chunk pointers, never the clips themselves.

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <Korvo/Plexis/Tessel/Client/Mirror.h>

namespace Korvo::Plexis::Tessel::Client::Detail {

using ClipPtr = std::shared_ptr<const Data::Clips::Clip>;

// One chunk of clips, sorted by identifier.
struct ClipChunk {
    std::vector<ClipPtr> clips;
};

struct ClipTable {
    static constexpr std::size_t kChunks = 1024;
    std::vector<std::shared_ptr<const ClipChunk>> chunks;
    std::size_t count = 0;

    static std::size_t ChunkOf(const std::string& umId) {
        return std::hash<std::string>{}(umId) % kChunks;
    }
    static std::shared_ptr<const ClipTable> Empty();
    ClipPtr Find(const std::string& umId) const;
};

// Edits a clip table copy-on-write: the first edit after `Freeze` copies the table of chunk
// pointers, the first edit of a chunk copies that chunk's pointers. What `Freeze` returned is
// never changed again.
class ClipEditor {
public:
    explicit ClipEditor(std::shared_ptr<const ClipTable> base) : frozen(std::move(base)) {}

    ClipPtr Find(const std::string& umId) const;
    // Stores `clip` under its identifier; returns what was there (null when nothing).
    ClipPtr Put(ClipPtr clip);
    // Removes the clip of that identifier; returns it (null when absent).
    ClipPtr Erase(const std::string& umId);
    std::shared_ptr<const ClipTable> Freeze();
    bool Edited() const { return draft != nullptr; }
    const ClipTable& Current() const { return draft ? *draft : *frozen; }

private:
    ClipChunk& Own(std::size_t chunk);

    std::shared_ptr<const ClipTable> frozen;
    std::shared_ptr<ClipTable> draft;
    std::vector<std::shared_ptr<ClipChunk>> owned;  // chunks of `draft` not yet shared
};

template <class Key, class Item>
using SharedMap = std::map<Key, std::shared_ptr<const Item>>;

struct SourceData {
    std::string name;
    SyncState catalogueState = SyncState::Syncing;
    std::chrono::system_clock::time_point catalogueConfirmedAt;
    std::shared_ptr<const std::map<int, MirroredServer>> servers;
    std::shared_ptr<const SharedMap<Data::Channels::Guid, Data::Channels::PlayerState>> players;
    std::shared_ptr<const SharedMap<Data::Channels::Guid, MirroredRecorder>> recorders;
    std::shared_ptr<const ClipTable> clips;
    std::shared_ptr<const SharedMap<std::string, Data::Sequences::Playlist>> playlists;
    std::shared_ptr<const SharedMap<std::string, Data::Clips::Groups::AnglesGroup>> anglesGroups;
    std::shared_ptr<const SharedMap<std::string, Data::Clips::Train>> trains;
};

// The parts of a channel's state that stay put while it plays or records: its clock, position
// and the time codes and counters that follow them are cleared. Two states that differ only
// there are the same state for verification and for change events from listings.
Data::Channels::PlayerState Steady(Data::Channels::PlayerState state);
Data::Channels::RecorderState Steady(Data::Channels::RecorderState state);
// A train whose last range is still growing has that range's end cleared.
Data::Clips::Train Steady(Data::Clips::Train train);

}  // namespace Korvo::Plexis::Tessel::Client::Detail

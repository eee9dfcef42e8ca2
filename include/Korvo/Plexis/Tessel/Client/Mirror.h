#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/Channels/PlayerState.h>
#include <Korvo/Plexis/Data/Channels/RecorderState.h>
#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/Clips/Groups/AnglesGroup.h>
#include <Korvo/Plexis/Data/Clips/RecordingRange.h>
#include <Korvo/Plexis/Data/Clips/Train.h>
#include <Korvo/Plexis/Data/Sequences/Playlist.h>
#include <Korvo/Plexis/Data/Servers/ServerInfo.h>
#include <Korvo/Plexis/Tessel/Client/Connection.h>

namespace Korvo::Plexis::Tessel::Client {

/// How far a mirrored server (or a source's catalogue) can be trusted.
enum class SyncState : std::uint8_t {
    Syncing,  ///< the first listing is under way: what is there may be incomplete
    Live,     ///< listed, and every notification since has been applied
    Stale,    ///< something is known to be missed; a resync is under way
    Lost,     ///< unreachable (link down, or the server left the network): last known values
};

/// "Syncing", "Live", "Stale", "Lost".
const char* ToString(SyncState state) noexcept;

/// What a mirror follows and how often it checks itself.
struct MirrorOptions {
    /// One entry per endpoint pair (a source); one pair may carry several servers. The mirror
    /// makes one `Connection` per entry; `topics` is ignored (every notification is needed).
    std::vector<ConnectionOptions> sources;
    /// Servers and channel states are re-read and compared this often.
    std::chrono::milliseconds channelCheckPeriod{1000};
    /// The catalogue (clips, playlists, angles groups, trains) is re-read and compared this
    /// often, clips a listing part at a time.
    std::chrono::milliseconds catalogueCheckPeriod{30000};
    /// Notifications waiting for the mirror's thread, and those held back during each listing,
    /// at most this many bytes each (an estimate of their size in memory). Beyond it they are
    /// dropped, counted (`MirrorStatistics::notificationsDropped`), and the source goes stale
    /// and is listed again.
    std::size_t heldNotificationBytes = std::size_t{4} << 20;
    /// The time limit of one listing.
    std::chrono::milliseconds listingTimeLimit{10000};
};

/// A server as mirrored: what the server listing says of it and how far it is trusted.
struct MirroredServer {
    Data::Servers::ServerInfo info;
    SyncState state = SyncState::Syncing;
    /// When a listing last confirmed this server's channels; the epoch when never.
    std::chrono::system_clock::time_point confirmedAt;
};

/// A recorder as mirrored: its state and the recorded ranges of its train (empty until the
/// server has announced them).
struct MirroredRecorder {
    Data::Channels::RecorderState state;
    std::vector<Data::Clips::RecordingRange> ranges;
    bool isLoopRecording = false;

    friend bool operator==(const MirroredRecorder& left, const MirroredRecorder& right) {
        return left.state == right.state && left.ranges == right.ranges &&
               left.isLoopRecording == right.isLoopRecording;
    }
    friend bool operator!=(const MirroredRecorder& left, const MirroredRecorder& right) {
        return !(left == right);
    }
};

namespace Detail {
struct SourceData;  // one source's immutable state, shared between snapshots
}

/// One source (endpoint pair) at one moment. Immutable; valid as long as it, or the
/// `MirrorSnapshot` it came from, lives. Every member may be called from any thread.
class SourceSnapshot {
public:
    template <class T>
    using Shared = std::shared_ptr<const T>;

    /// The source's name (`ConnectionOptions::name`).
    const std::string& Name() const;
    /// How far the catalogue (clips, playlists, angles groups, trains) can be trusted, and when
    /// a listing last confirmed it.
    SyncState CatalogueState() const;
    std::chrono::system_clock::time_point CatalogueConfirmedAt() const;

    /// Servers by number.
    const std::map<int, MirroredServer>& Servers() const;
    /// Player and recorder channels of every server of the source.
    const std::map<Data::Channels::Guid, Shared<Data::Channels::PlayerState>>& Players() const;
    const std::map<Data::Channels::Guid, Shared<MirroredRecorder>>& Recorders() const;

    /// The clip of that unique material identifier, or null.
    Shared<Data::Clips::Clip> FindClip(const std::string& umId) const;
    std::size_t ClipCount() const;
    /// Calls `visit` with every clip, in no particular order.
    void ForEachClip(const std::function<void(const Shared<Data::Clips::Clip>&)>& visit) const;
    /// Playlists by their sequence's material identifier.
    const std::map<std::string, Shared<Data::Sequences::Playlist>>& Playlists() const;
    /// Angles groups by identifier text.
    const std::map<std::string, Shared<Data::Clips::Groups::AnglesGroup>>& AnglesGroups() const;
    /// Trains by their clip's material identifier.
    const std::map<std::string, Shared<Data::Clips::Train>>& Trains() const;

    explicit SourceSnapshot(std::shared_ptr<const Detail::SourceData> data);

private:
    std::shared_ptr<const Detail::SourceData> data;
};

/// Every source at one moment: a consistent view, taken without copying the catalogue.
class MirrorSnapshot {
public:
    MirrorSnapshot() = default;
    explicit MirrorSnapshot(std::vector<SourceSnapshot> sources) : sources(std::move(sources)) {}

    /// One per `MirrorOptions::sources` entry, in the same order.
    const std::vector<SourceSnapshot>& Sources() const { return sources; }
    const SourceSnapshot& Source(std::size_t index) const { return sources.at(index); }

private:
    std::vector<SourceSnapshot> sources;
};

/// What happened to one item.
enum class Change : std::uint8_t { Added, Updated, Removed };

/// One item added, updated or removed in the mirror. `before` is null when added, `after` when
/// removed.
template <class Key, class Item>
struct ItemChanged {
    std::size_t source = 0;  ///< index in `MirrorOptions::sources`
    Key key;
    Change change = Change::Updated;
    std::shared_ptr<const Item> before;
    std::shared_ptr<const Item> after;
};

using ServerChanged = ItemChanged<int, Data::Servers::ServerInfo>;
using PlayerChanged = ItemChanged<Data::Channels::Guid, Data::Channels::PlayerState>;
using RecorderChanged = ItemChanged<Data::Channels::Guid, MirroredRecorder>;
using ClipChanged = ItemChanged<std::string, Data::Clips::Clip>;
using PlaylistChanged = ItemChanged<std::string, Data::Sequences::Playlist>;
using AnglesGroupChanged = ItemChanged<std::string, Data::Clips::Groups::AnglesGroup>;
using TrainChanged = ItemChanged<std::string, Data::Clips::Train>;

/// A server's (`serverId` > 0) or a catalogue's (`serverId` 0) sync state changed.
struct SyncStateChanged {
    std::size_t source = 0;
    int serverId = 0;
    SyncState before = SyncState::Syncing;
    SyncState after = SyncState::Syncing;
};

using MirrorEvent = std::variant<SyncStateChanged, ServerChanged, PlayerChanged, RecorderChanged,
                                 ClipChanged, PlaylistChanged, AnglesGroupChanged, TrainChanged>;

/// A difference found by verification between the mirror and what the server listed.
enum class Difference : std::uint8_t {
    Server,       ///< a server added, removed or changed
    Player,       ///< a player's steady state (not its moving position or clock)
    Recorder,     ///< a recorder's steady state
    Clip,
    Playlist,
    AnglesGroup,
    Train,
};
inline constexpr std::size_t kDifferenceKinds = 7;

/// Counters since the mirror started; they only grow.
struct MirrorStatistics {
    std::uint64_t notificationsApplied = 0;
    std::uint64_t notificationsDropped = 0;  ///< beyond `heldNotificationBytes`
    std::uint64_t resyncs = 0;               ///< listings started for a reason other than start-up
    std::uint64_t verifications = 0;         ///< channel and catalogue checks completed
    std::array<std::uint64_t, kDifferenceKinds> differences{};  ///< by `Difference`
};

/// What the mirror can say of a command that ended with `Outcome::LinkLost`.
struct Settlement {
    enum class Verdict : std::uint8_t {
        NotYet,      ///< the servers it addressed are not live again yet: ask later
        Visible,     ///< the resynced state shows the command's effect
        NotVisible,  ///< it does not (the command did not run, or was undone since)
        Unknown,     ///< this command's effect cannot be seen in the state
    };
    Verdict verdict = Verdict::Unknown;
    /// The channels the command addressed, with what the mirror shows of them now.
    std::map<Data::Channels::Guid, std::shared_ptr<const Data::Channels::PlayerState>> players;
    std::map<Data::Channels::Guid, std::shared_ptr<const MirroredRecorder>> recorders;
    /// For clip commands: the clips addressed, null when absent from the mirror.
    std::map<std::string, std::shared_ptr<const Data::Clips::Clip>> clips;
    /// A sentence for a log or an operator.
    std::string detail;
};

namespace Detail {
class MirrorEngine;  // the mirror's thread and its state
}

/// A live, self-healing copy of the servers, channels and catalogue behind one or more
/// endpoint pairs.
///
/// It subscribes first, then lists servers, channels and the catalogue; notifications that
/// arrive during a listing are held and re-read rather than applied over newer listed state.
/// It lists again when a link comes back, when notifications are known to be lost, when a
/// server returns to the network or is added again, and when a periodic check finds a
/// difference.
///
/// Threads. The mirror owns one thread: it applies notifications and listings, publishes
/// snapshots and calls every watcher, one call at a time, in the order of the changes, never
/// while a lock of the library is held. A slow watcher delays the mirror's own updates. Watchers
/// may call `Snapshot`, `Statistics` and `Unwatch`, but not the destructor. `Snapshot` never
/// waits for the mirror's thread beyond copying a few pointers. All members may be called from
/// any thread.
class Mirror {
public:
    /// Makes the connections and starts listing. Throws what `Connection`'s constructor throws,
    /// and `std::invalid_argument` for no source or a non-positive period.
    explicit Mirror(MirrorOptions options);
    /// Stops the thread and closes the connections; must not be called from a watcher.
    ~Mirror();

    Mirror(const Mirror&) = delete;
    Mirror& operator=(const Mirror&) = delete;

    /// What the mirror holds now.
    MirrorSnapshot Snapshot() const;

    /// Calls `watcher` on the mirror's thread with every change, in order per source, each
    /// once. Returns an identifier for `Unwatch`.
    int Watch(std::function<void(const MirrorEvent&)> watcher);
    /// Calls `watcher` with every sync state change only.
    int WatchStates(std::function<void(const SyncStateChanged&)> watcher);
    /// Not called again once this returns (unless called from the mirror's thread while another
    /// watcher of it runs).
    void Unwatch(int watcher);

    MirrorStatistics Statistics() const;

    /// The connection of a source, to send commands with.
    Connection& ConnectionOf(std::size_t source = 0);

    /// Lists the source again now, as a verification that found a difference would.
    void Resync(std::size_t source = 0);

    /// What the mirror shows of the channels or items a command addressed, once the servers it
    /// addressed are live again. Judged for load (clips), play (including speed 0, pause),
    /// step (Unknown: its effect is relative), go idle, go live, record start and stop, and
    /// clip create, update and delete; `Unknown` for any other command. Never sends anything.
    Settlement Settle(const HighLevelOperations::Commands::CommandParams& sent,
                      std::size_t source = 0) const;

private:
    std::shared_ptr<Detail::MirrorEngine> engine;
};

}  // namespace Korvo::Plexis::Tessel::Client

// The state file: clips, playlists and angles groups, kept across restarts.
//
// Layout: the line "tessel-sim state 1\n", then frames of [4-byte little-endian length][bytes],
// each one reply record as the wire carries it: a number of clip listings (one per server, the
// server's number in `marker`), preceded by their count, then one playlist listing and one
// angles-group listing.

#include <cstdint>
#include <stdexcept>

#include "Model.h"

namespace Korvo::Plexis::Tessel::Simulator {

namespace {

constexpr std::string_view kMagic = "tessel-sim state 1\n";

void PutLength(std::string& out, std::size_t length) {
    const auto value = static_cast<std::uint32_t>(length);
    for (int shift = 0; shift < 32; shift += 8) {
        out.push_back(static_cast<char>(value >> shift));
    }
}

template <class Reply>
void PutReply(std::string& out, const Reply& reply) {
    using W = Serialization::Thrift::Commands::WireOf<Reply>;
    const std::string bytes = ConvertAndEncode<typename W::ToThrift, typename W::Record>(
        reply, Client::ReplyTraits<Reply>::kClassName.data());
    PutLength(out, bytes.size());
    out += bytes;
}

class Reader {
public:
    explicit Reader(const std::string& text) : text(text) {
        if (text.compare(0, kMagic.size(), kMagic) != 0) {
            throw std::runtime_error("not a tessel-sim state file");
        }
        offset = kMagic.size();
    }

    std::uint32_t Length() {
        if (text.size() - offset < 4) {
            throw std::runtime_error("the state file is truncated");
        }
        std::uint32_t value = 0;
        for (int i = 3; i >= 0; --i) {
            value = value << 8 | static_cast<unsigned char>(text[offset + i]);
        }
        offset += 4;
        return value;
    }

    template <class Reply>
    Reply Next() {
        using W = Serialization::Thrift::Commands::WireOf<Reply>;
        const std::uint32_t length = Length();
        if (text.size() - offset < length) {
            throw std::runtime_error("the state file is truncated");
        }
        typename W::Record record;
        try {
            Common::Serialization::DeserializerImpl<typename W::Record>().Deserialize(
                reinterpret_cast<const unsigned char*>(text.data() + offset), length, record);
        } catch (const std::exception& failure) {
            throw std::runtime_error(std::string("the state file is damaged: ") + failure.what());
        }
        offset += length;
        Reply reply;
        const auto result =
            FromThriftConverter<typename W::Record, Reply>().To(std::move(record), reply);
        if (!result.success) {
            throw std::runtime_error("the state file is damaged: " + result.message);
        }
        return reply;
    }

    // Nothing may follow the last record: extra bytes mean a file written by something else.
    void Finish() const {
        if (offset != text.size()) {
            throw std::runtime_error("the state file has " + std::to_string(text.size() - offset) +
                                     " unexpected bytes after its last record");
        }
    }

private:
    template <class Wire, class Domain>
    using FromThriftConverter = Serialization::Thrift::FromThriftConverter<Wire, Domain>;

    const std::string& text;
    std::size_t offset = 0;
};

}  // namespace

std::string Model::SaveState() const {
    std::map<int, Commands::GetClipsCommandReply> perServer;
    for (const auto& [id, entry] : clips) {
        auto& listing = perServer[entry.serverId];
        listing.marker = entry.serverId;
        listing.clips.push_back(entry.clip);
    }
    std::string out(kMagic);
    PutLength(out, perServer.size());
    for (const auto& [server, listing] : perServer) {
        PutReply(out, listing);
    }
    Commands::GetPlaylistsCommandReply playlistListing;
    for (const auto& [id, playlist] : playlists) {
        playlistListing.playlists.push_back(playlist);
    }
    PutReply(out, playlistListing);
    Commands::GetAnglesGroupsCommandReply groupListing;
    for (const auto& [id, group] : anglesGroups) {
        groupListing.anglesGroups.push_back(group);
    }
    PutReply(out, groupListing);
    return out;
}

namespace {

// Adds `value` under `id`, refusing an identifier seen before: two items cannot share one.
template <class Map, class Value>
void AddUnique(Map& map, const std::string& id, Value value, const char* what) {
    if (!map.emplace(id, std::move(value)).second) {
        throw std::runtime_error(std::string("the state file holds two ") + what +
                                 " with the identifier \"" + id + "\"");
    }
}

}  // namespace

void Model::LoadState(const std::string& state) {
    Reader reader(state);
    std::map<std::string, ClipEntry> loadedClips;
    for (std::uint32_t count = reader.Length(); count > 0; --count) {
        auto listing = reader.Next<Commands::GetClipsCommandReply>();
        if (listing.marker < 1 || listing.marker > kMaxCount) {
            throw std::runtime_error("the state file names server " +
                                     std::to_string(listing.marker) + ", outside 1 .. " +
                                     std::to_string(kMaxCount));
        }
        for (auto& clip : listing.clips) {
            const std::string id = clip.umId;
            AddUnique(loadedClips, id, ClipEntry{std::move(clip), static_cast<int>(listing.marker)},
                      "clips");
        }
    }
    std::map<std::string, Data::Sequences::Playlist> loadedPlaylists;
    for (auto& playlist : reader.Next<Commands::GetPlaylistsCommandReply>().playlists) {
        const std::string id = playlist.sequence.umId;
        AddUnique(loadedPlaylists, id, std::move(playlist), "playlists");
    }
    std::map<std::string, Data::Clips::Groups::AnglesGroup> loadedGroups;
    for (auto& group : reader.Next<Commands::GetAnglesGroupsCommandReply>().anglesGroups) {
        const std::string id = group.groupGuid.GetValue();
        AddUnique(loadedGroups, id, std::move(group), "angles groups");
    }
    reader.Finish();
    clips = std::move(loadedClips);
    playlists = std::move(loadedPlaylists);
    anglesGroups = std::move(loadedGroups);
    dirty = false;
}

}  // namespace Korvo::Plexis::Tessel::Simulator

#pragma once

#include <cstdint>
#include <tuple>
#include <vector>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Data/Sequences/Playlist.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Playlists. Type code 15.
class GetPlaylistsCommandReply : public CommandReplyOfType<15> {
public:
    explicit GetPlaylistsCommandReply(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReplyOfType(commandGuid) {}

    std::int64_t marker = 0;  ///< a value the server attaches to the listing, passed on unchanged
    std::vector<Data::Sequences::Playlist> playlists;  ///< in the server's order

    auto Fields() const { return std::tie(commandGuid, marker, playlists); }
    KORVO_COMPARED_BY_FIELDS(GetPlaylistsCommandReply)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <cstdint>
#include <vector>

#include <Korvo/Plexis/Data/FieldList.h>
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

    KORVO_FIELDS(GetPlaylistsCommandReply, commandGuid, marker, playlists)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

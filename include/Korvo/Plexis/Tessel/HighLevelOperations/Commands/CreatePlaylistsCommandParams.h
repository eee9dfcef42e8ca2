#pragma once

#include <vector>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Sequences/Playlist.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Creates playlists.
struct CreatePlaylistsCommandParams : CommandParams {
    std::vector<Data::Sequences::Playlist> playlists;  ///< the playlists to create

    KORVO_FIELDS(CreatePlaylistsCommandParams, commandGuid, playlists)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <tuple>
#include <vector>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/Sequences/Playlist.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Creates playlists.
struct CreatePlaylistsCommandParams : CommandParams {
    std::vector<Data::Sequences::Playlist> playlists;  ///< the playlists to create

    auto Fields() const { return std::tie(commandGuid, playlists); }
    KORVO_COMPARED_BY_FIELDS(CreatePlaylistsCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <tuple>
#include <vector>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Deletes playlists.
struct DeletePlaylistsCommandParams : CommandParams {
    std::vector<Data::Guid> playlists;  ///< the playlists to delete

    auto Fields() const { return std::tie(commandGuid, playlists); }
    KORVO_COMPARED_BY_FIELDS(DeletePlaylistsCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

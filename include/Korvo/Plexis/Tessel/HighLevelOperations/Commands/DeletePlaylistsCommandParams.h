#pragma once

#include <vector>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Deletes playlists.
struct DeletePlaylistsCommandParams : CommandParams {
    std::vector<Data::Guid> playlists;  ///< the playlists to delete

    KORVO_FIELDS(DeletePlaylistsCommandParams, commandGuid, playlists)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <vector>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdatePlaylistParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Updates playlists.
struct UpdatePlaylistsCommandParams : CommandParams {
    std::vector<UpdatePlaylistParams> params;  ///< the updates

    KORVO_FIELDS(UpdatePlaylistsCommandParams, commandGuid, params)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

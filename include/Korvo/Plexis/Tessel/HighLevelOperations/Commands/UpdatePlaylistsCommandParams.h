#pragma once

#include <tuple>
#include <vector>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdatePlaylistParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Updates playlists.
struct UpdatePlaylistsCommandParams : CommandParams {
    std::vector<UpdatePlaylistParams> params;  ///< the updates

    auto Fields() const { return std::tie(commandGuid, params); }
    KORVO_COMPARED_BY_FIELDS(UpdatePlaylistsCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

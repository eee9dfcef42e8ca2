#pragma once

#include <map>
#include <tuple>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SetLoadBoundariesCommandParam.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Moves the boundaries of what players have loaded.
struct SetLoadBoundariesCommandParams : CommandParams {
    std::map<Data::Channels::Guid, SetLoadBoundariesCommandParam>
        playersParameters;  ///< the new boundaries of each player

    auto Fields() const { return std::tie(commandGuid, playersParameters); }
    KORVO_COMPARED_BY_FIELDS(SetLoadBoundariesCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <map>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SetLoadBoundariesCommandParam.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Moves the boundaries of what players have loaded.
struct SetLoadBoundariesCommandParams : CommandParams {
    std::map<Data::Channels::Guid, SetLoadBoundariesCommandParam>
        playersParameters;  ///< the new boundaries of each player

    KORVO_FIELDS(SetLoadBoundariesCommandParams, commandGuid, playersParameters)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

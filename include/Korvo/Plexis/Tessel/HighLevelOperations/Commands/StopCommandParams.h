#pragma once

#include <set>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Stops recorders recording ("StopRecordingCommand").
struct StopCommandParams : CommandParams {
    std::set<Data::Channels::Guid> recorders;  ///< recorders to stop

    KORVO_FIELDS(StopCommandParams, commandGuid, recorders)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

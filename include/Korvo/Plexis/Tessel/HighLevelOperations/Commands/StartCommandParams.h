#pragma once

#include <set>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Starts recorders recording ("StartRecordingCommand").
struct StartCommandParams : CommandParams {
    std::set<Data::Channels::Guid> recorders;  ///< recorders to start

    KORVO_FIELDS(StartCommandParams, commandGuid, recorders)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <set>
#include <tuple>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Starts recorders recording ("StartRecordingCommand").
struct StartCommandParams : CommandParams {
    std::set<Data::Channels::Guid> recorders;  ///< recorders to start

    auto Fields() const { return std::tie(commandGuid, recorders); }
    KORVO_COMPARED_BY_FIELDS(StartCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

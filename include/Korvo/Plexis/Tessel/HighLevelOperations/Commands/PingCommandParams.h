#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Asks the server to answer, to check that it is there.
struct PingCommandParams : CommandParams {
    auto Fields() const { return std::tie(commandGuid); }
    KORVO_COMPARED_BY_FIELDS(PingCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

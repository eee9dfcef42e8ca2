#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Asks the server to answer, to check that it is there.
struct PingCommandParams : CommandParams {
    KORVO_FIELDS(PingCommandParams, commandGuid)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

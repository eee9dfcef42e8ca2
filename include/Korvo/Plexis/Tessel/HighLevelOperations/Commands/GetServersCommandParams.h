#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Asks for the servers known to the system.
struct GetServersCommandParams : CommandParams {
    std::int32_t serverRange = 0;  ///< which servers; values defined by the server

    KORVO_FIELDS(GetServersCommandParams, commandGuid, serverRange)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

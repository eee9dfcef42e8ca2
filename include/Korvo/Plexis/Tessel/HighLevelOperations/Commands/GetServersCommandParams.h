#pragma once

#include <cstdint>
#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Asks for the servers known to the system.
struct GetServersCommandParams : CommandParams {
    std::int32_t serverRange = 0;  ///< which servers; values defined by the server

    auto Fields() const { return std::tie(commandGuid, serverRange); }
    KORVO_COMPARED_BY_FIELDS(GetServersCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

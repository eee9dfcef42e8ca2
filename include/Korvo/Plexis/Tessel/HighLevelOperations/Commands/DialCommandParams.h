#pragma once

#include <cstdint>
#include <set>
#include <tuple>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Jogs players at a velocity.
struct DialCommandParams : CommandParams {
    std::set<Data::Channels::Guid> players;
    std::int32_t velocity = 0;  ///< dial (jog) velocity

    auto Fields() const { return std::tie(commandGuid, players, velocity); }
    KORVO_COMPARED_BY_FIELDS(DialCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

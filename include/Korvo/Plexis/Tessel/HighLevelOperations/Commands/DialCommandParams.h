#pragma once

#include <cstdint>
#include <set>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Jogs players at a velocity.
struct DialCommandParams : CommandParams {
    std::set<Data::Channels::Guid> players;
    std::int32_t velocity = 0;  ///< dial (jog) velocity

    KORVO_FIELDS(DialCommandParams, commandGuid, players, velocity)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

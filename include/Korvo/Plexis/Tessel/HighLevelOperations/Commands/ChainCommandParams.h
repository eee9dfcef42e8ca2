#pragma once

#include <cstdint>
#include <map>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/Channels/LoadBoundary.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Chains material after what players have loaded.
struct ChainCommandParams : CommandParams {
    std::map<Data::Channels::Guid, Data::Guid>
        players;                 ///< for each player, the identifier of the material chained
    std::int64_t timepoint = 0;  ///< where the chained material starts
    Data::Channels::LoadBoundary inBoundary;
    Data::Channels::LoadBoundary outBoundary;

    KORVO_FIELDS(ChainCommandParams, commandGuid, players, timepoint, inBoundary, outBoundary)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

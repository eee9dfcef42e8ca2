#pragma once

#include <cstdint>
#include <set>
#include <tuple>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Starts players playing at a speed.
struct PlayCommandParams : CommandParams {
    std::set<Data::Channels::Guid> players;  ///< players to start
    std::int32_t speedNum = 1;               ///< play speed numerator
    std::int32_t speedDen = 1;               ///< play speed denominator

    auto Fields() const { return std::tie(commandGuid, players, speedNum, speedDen); }
    KORVO_COMPARED_BY_FIELDS(PlayCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

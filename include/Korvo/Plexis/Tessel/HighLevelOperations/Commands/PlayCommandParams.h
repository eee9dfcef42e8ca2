#pragma once

#include <cstdint>
#include <set>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Starts players playing at a speed.
struct PlayCommandParams : CommandParams {
    std::set<Data::Channels::Guid> players;  ///< players to start
    std::int32_t speedNum = 1;               ///< play speed numerator
    std::int32_t speedDen = 1;               ///< play speed denominator

    KORVO_FIELDS(PlayCommandParams, KORVO_WIRE_NAME(commandGuid, commandId), players, speedNum,
                 speedDen)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

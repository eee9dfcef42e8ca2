#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Data::Channels {

/// The numbers a player shows about what it has on air. Value sets are the server's.
struct PlayerInfoOnAir {
    std::int32_t speedNumerator = 0;    ///< current play speed, numerator
    std::int32_t speedDenominator = 0;  ///< current play speed, denominator
    std::int32_t playMode = 0;          ///< stopped, playing, jogging, shuttling
    std::int32_t loopMode = 0;          ///< whether and how the loaded material loops
    std::int32_t elementIndex = 0;      ///< index of the on-air element in a loaded sequence
    std::int32_t elementCount = 0;      ///< number of elements of a loaded sequence
    std::int32_t loopCount = 0;         ///< loop runs completed
    std::int32_t videoStandard = 0;     ///< video standard of the output
    std::int32_t controlMode = 0;       ///< who controls the player
    std::int64_t timepoint = 0;         ///< absolute time point on air
    std::int64_t position = 0;          ///< fields from the start of the loaded material
    std::int64_t inPoint = 0;           ///< in point of the loaded material, in fields
    std::int64_t outPoint = 0;          ///< out point of the loaded material, in fields
    std::int64_t duration = 0;          ///< length of the loaded material, in fields
    std::int64_t remaining = 0;         ///< fields left before the out point
    std::int64_t sequencePosition = 0;  ///< fields from the start of a loaded sequence
    std::int64_t sequenceDuration = 0;  ///< length of a loaded sequence, in fields
    std::int64_t updateTimestamp = 0;   ///< server clock when these numbers were taken

    KORVO_FIELDS(PlayerInfoOnAir, speedNumerator, speedDenominator, playMode, loopMode,
                 elementIndex, elementCount, loopCount, videoStandard, controlMode, timepoint,
                 position, inPoint, outPoint, duration, remaining, sequencePosition,
                 sequenceDuration, updateTimestamp)
};

}  // namespace Korvo::Plexis::Data::Channels

#pragma once

#include <cstdint>
#include <string>

#include <Korvo/Plexis/Data/Clips/AsciiOrUtf16String.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Sequences/SequenceId.h>

namespace Korvo::Plexis::Data::Sequences {

/// A sequence: its identity, names, time-code regeneration settings, durations and play rate.
struct Sequence {
    SequenceId id;
    std::string umId;
    Clips::AsciiOrUtf16String varId;
    Clips::AsciiOrUtf16String name;
    bool isTimeCodeRegen = false;
    std::string timeCodeRegenReference;
    std::int32_t timeCodeRegenBase = 0;
    std::int32_t timeCodeRegenSource = 0;
    std::int32_t timeCodeRegenOutput = 0;
    std::int32_t timeCodeRegenType = 0;
    std::int64_t durationWithEffects = 0;
    std::int64_t durationWithoutEffects = 0;
    std::int64_t playRateNumerator = 0;
    std::int64_t playRateDenominator = 0;
    bool isFixedDuration = false;
    std::int32_t archiveStatus = 0;

    KORVO_FIELDS(Sequence, id, umId, varId, name, isTimeCodeRegen, timeCodeRegenReference,
                 timeCodeRegenBase, timeCodeRegenSource, timeCodeRegenOutput, timeCodeRegenType,
                 durationWithEffects, durationWithoutEffects, playRateNumerator,
                 playRateDenominator, isFixedDuration, archiveStatus)
};

}  // namespace Korvo::Plexis::Data::Sequences

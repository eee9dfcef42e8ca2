#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// What one player loads: a sequence and a cue position.
struct LoadSequenceCommandParam {
    Data::Guid sequence;                     ///< the sequence (playlist) to load
    std::int64_t durationFromBeginning = 0;  ///< cue position from the sequence's start
    bool isForDiffusion = false;             ///< load for on-air diffusion

    KORVO_FIELDS(LoadSequenceCommandParam, sequence, durationFromBeginning, isForDiffusion)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <cstdint>
#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/Guid.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// What one player loads: a sequence and a cue position.
struct LoadSequenceCommandParam {
    Data::Guid sequence;                     ///< the sequence (playlist) to load
    std::int64_t durationFromBeginning = 0;  ///< cue position from the sequence's start
    bool isForDiffusion = false;             ///< load for on-air diffusion

    auto Fields() const { return std::tie(sequence, durationFromBeginning, isForDiffusion); }
    KORVO_COMPARED_BY_FIELDS(LoadSequenceCommandParam)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/Channels/LoadBoundary.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// What one player loads: a clip, a cue point and boundaries.
struct LoadClipCommandParam {
    Data::Guid clip;             ///< the clip to load
    std::int64_t timepoint = 0;  ///< cue point
    Data::Channels::LoadBoundary inBoundary;
    Data::Channels::LoadBoundary outBoundary;

    KORVO_FIELDS(LoadClipCommandParam, clip, timepoint, inBoundary, outBoundary)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

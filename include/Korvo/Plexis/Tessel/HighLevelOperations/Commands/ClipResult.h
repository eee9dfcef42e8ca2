#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/OperationStatus.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The outcome of a clip command for one clip.
struct ClipResult {
    Data::OperationStatus status;  ///< outcome for this clip
    Data::Clips::Clip clip;        ///< the clip concerned

    auto Fields() const { return std::tie(status, clip); }
    KORVO_COMPARED_BY_FIELDS(ClipResult)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/OperationStatus.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The outcome of a clip command for one clip.
struct ClipResult {
    Data::OperationStatus status;  ///< outcome for this clip
    Data::Clips::Clip clip;        ///< the clip concerned

    KORVO_FIELDS(ClipResult, status, clip)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

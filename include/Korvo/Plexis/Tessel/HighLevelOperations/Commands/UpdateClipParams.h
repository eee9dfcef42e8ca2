#pragma once

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// One clip update: the clip as it was and as it is to become.
struct UpdateClipParams {
    Data::Clips::Clip oldClip;
    Data::Clips::Clip newClip;

    KORVO_FIELDS(UpdateClipParams, oldClip, newClip)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

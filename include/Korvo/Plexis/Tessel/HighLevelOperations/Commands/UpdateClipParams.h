#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// One clip update: the clip as it was and as it is to become.
struct UpdateClipParams {
    Data::Clips::Clip oldClip;
    Data::Clips::Clip newClip;

    auto Fields() const { return std::tie(oldClip, newClip); }
    KORVO_COMPARED_BY_FIELDS(UpdateClipParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// One clip to create: its source, its data and whether to set its time codes.
struct CreateClipParams {
    Data::Guid sourceId;        ///< the source the clip is created from
    Data::Clips::Clip clip;     ///< the clip's data
    bool setTimecodes = false;  ///< whether the clip's time codes are to be set

    KORVO_FIELDS(CreateClipParams, sourceId, clip, setTimecodes)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

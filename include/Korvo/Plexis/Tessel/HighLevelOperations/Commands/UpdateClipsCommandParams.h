#pragma once

#include <vector>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdateClipParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Updates clips.
struct UpdateClipsCommandParams : CommandParams {
    std::vector<UpdateClipParams> clips;  ///< the updates

    KORVO_FIELDS(UpdateClipsCommandParams, commandGuid, clips)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

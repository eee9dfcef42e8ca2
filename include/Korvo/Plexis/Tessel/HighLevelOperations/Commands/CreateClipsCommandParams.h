#pragma once

#include <vector>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CreateClipParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Creates clips.
struct CreateClipsCommandParams : CommandParams {
    std::vector<CreateClipParams> clips;  ///< the clips to create

    KORVO_FIELDS(CreateClipsCommandParams, commandGuid, clips)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

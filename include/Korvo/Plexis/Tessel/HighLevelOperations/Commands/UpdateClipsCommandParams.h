#pragma once

#include <tuple>
#include <vector>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdateClipParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Updates clips.
struct UpdateClipsCommandParams : CommandParams {
    std::vector<UpdateClipParams> clips;  ///< the updates

    auto Fields() const { return std::tie(commandGuid, clips); }
    KORVO_COMPARED_BY_FIELDS(UpdateClipsCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

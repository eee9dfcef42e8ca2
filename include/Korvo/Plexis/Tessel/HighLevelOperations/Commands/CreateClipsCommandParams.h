#pragma once

#include <tuple>
#include <vector>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CreateClipParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Creates clips.
struct CreateClipsCommandParams : CommandParams {
    std::vector<CreateClipParams> clips;  ///< the clips to create

    auto Fields() const { return std::tie(commandGuid, clips); }
    KORVO_COMPARED_BY_FIELDS(CreateClipsCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

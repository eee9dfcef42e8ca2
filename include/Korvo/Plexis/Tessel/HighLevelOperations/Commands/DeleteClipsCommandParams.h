#pragma once

#include <tuple>
#include <vector>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Deletes clips.
struct DeleteClipsCommandParams : CommandParams {
    std::vector<Data::Guid> clips;  ///< the clips to delete

    auto Fields() const { return std::tie(commandGuid, clips); }
    KORVO_COMPARED_BY_FIELDS(DeleteClipsCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

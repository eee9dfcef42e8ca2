#pragma once

#include <vector>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Deletes clips.
struct DeleteClipsCommandParams : CommandParams {
    std::vector<Data::Guid> clips;  ///< the clips to delete

    KORVO_FIELDS(DeleteClipsCommandParams, commandGuid, clips)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

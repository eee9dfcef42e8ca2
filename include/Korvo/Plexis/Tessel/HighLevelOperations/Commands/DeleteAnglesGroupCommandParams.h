#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Deletes an angles group.
struct DeleteAnglesGroupCommandParams : CommandParams {
    Data::Guid groupGuid;  ///< the group to delete

    KORVO_FIELDS(DeleteAnglesGroupCommandParams, commandGuid, groupGuid)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

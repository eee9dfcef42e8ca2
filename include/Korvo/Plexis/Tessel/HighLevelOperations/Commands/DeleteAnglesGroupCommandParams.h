#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Deletes an angles group.
struct DeleteAnglesGroupCommandParams : CommandParams {
    Data::Guid groupGuid;  ///< the group to delete

    auto Fields() const { return std::tie(commandGuid, groupGuid); }
    KORVO_COMPARED_BY_FIELDS(DeleteAnglesGroupCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

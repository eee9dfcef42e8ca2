#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Asks for every angles group.
struct GetAnglesGroupsCommandParams : CommandParams {
    KORVO_FIELDS(GetAnglesGroupsCommandParams, commandGuid)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

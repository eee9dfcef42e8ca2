#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Asks for every angles group.
struct GetAnglesGroupsCommandParams : CommandParams {
    auto Fields() const { return std::tie(commandGuid); }
    KORVO_COMPARED_BY_FIELDS(GetAnglesGroupsCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Asks for the multiviewer overrides of every player.
struct GetMultiviewerDataCommandParams : CommandParams {
    auto Fields() const { return std::tie(commandGuid); }
    KORVO_COMPARED_BY_FIELDS(GetMultiviewerDataCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

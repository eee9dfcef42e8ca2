#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Asks for the state of every player and recorder.
struct GetChannelsCommandParams : CommandParams {
    auto Fields() const { return std::tie(commandGuid); }
    KORVO_COMPARED_BY_FIELDS(GetChannelsCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

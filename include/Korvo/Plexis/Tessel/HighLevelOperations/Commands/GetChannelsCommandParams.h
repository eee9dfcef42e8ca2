#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Asks for the state of every player and recorder.
struct GetChannelsCommandParams : CommandParams {
    KORVO_FIELDS(GetChannelsCommandParams, commandGuid)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

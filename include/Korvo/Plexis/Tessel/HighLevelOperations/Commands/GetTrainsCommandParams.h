#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Asks for every train (recorded material).
struct GetTrainsCommandParams : CommandParams {
    KORVO_FIELDS(GetTrainsCommandParams, commandGuid)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

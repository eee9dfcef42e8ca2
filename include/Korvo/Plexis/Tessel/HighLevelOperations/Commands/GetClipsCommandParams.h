#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Asks for every clip.
struct GetClipsCommandParams : CommandParams {
    KORVO_FIELDS(GetClipsCommandParams, commandGuid)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <map>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadClipCommandParam.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Loads a clip on each of several players.
struct LoadClipsCommandParams : CommandParams {
    std::map<Data::Channels::Guid, LoadClipCommandParam>
        playersParameters;  ///< what each player loads

    KORVO_FIELDS(LoadClipsCommandParams, commandGuid, playersParameters)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <map>
#include <tuple>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadClipCommandParam.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Loads a clip on each of several players.
struct LoadClipsCommandParams : CommandParams {
    std::map<Data::Channels::Guid, LoadClipCommandParam>
        playersParameters;  ///< what each player loads

    auto Fields() const { return std::tie(commandGuid, playersParameters); }
    KORVO_COMPARED_BY_FIELDS(LoadClipsCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <map>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadSequenceCommandParam.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Loads a sequence on each of several players.
struct LoadSequencesCommandParams : CommandParams {
    std::map<Data::Channels::Guid, LoadSequenceCommandParam>
        playersParameters;  ///< what each player loads

    KORVO_FIELDS(LoadSequencesCommandParams, commandGuid, playersParameters)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

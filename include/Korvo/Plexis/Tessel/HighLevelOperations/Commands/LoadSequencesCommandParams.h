#pragma once

#include <map>
#include <tuple>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadSequenceCommandParam.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Loads a sequence on each of several players.
struct LoadSequencesCommandParams : CommandParams {
    std::map<Data::Channels::Guid, LoadSequenceCommandParam>
        playersParameters;  ///< what each player loads

    auto Fields() const { return std::tie(commandGuid, playersParameters); }
    KORVO_COMPARED_BY_FIELDS(LoadSequencesCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <map>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Multiviewer/PlayerDataOverrides.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Sets the multiviewer overrides of players.
struct SetMultiviewerDataCommandParams : CommandParams {
    std::map<Data::Channels::Guid, Multiviewer::PlayerDataOverrides>
        playersDataOverrides;  ///< the overrides of each player

    KORVO_FIELDS(SetMultiviewerDataCommandParams, commandGuid, playersDataOverrides)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <set>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Puts players to idle.
struct GoIdleCommandParams : CommandParams {
    std::set<Data::Channels::Guid> players;
    bool setBlackScreen = false;  ///< show black while idle

    KORVO_FIELDS(GoIdleCommandParams, commandGuid, players, setBlackScreen)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

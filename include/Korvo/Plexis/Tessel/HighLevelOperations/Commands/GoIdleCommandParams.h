#pragma once

#include <set>
#include <tuple>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Puts players to idle.
struct GoIdleCommandParams : CommandParams {
    std::set<Data::Channels::Guid> players;
    bool setBlackScreen = false;  ///< show black while idle

    auto Fields() const { return std::tie(commandGuid, players, setBlackScreen); }
    KORVO_COMPARED_BY_FIELDS(GoIdleCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <set>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/Channels/LoadBoundary.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Makes players follow a source player.
struct SyncCommandParams : CommandParams {
    Data::Channels::Guid sourcePlayer;       ///< the player the others follow
    std::set<Data::Channels::Guid> players;  ///< players to synchronise
    Data::Channels::LoadBoundary inBoundary;
    Data::Channels::LoadBoundary outBoundary;

    KORVO_FIELDS(SyncCommandParams, commandGuid, sourcePlayer, players, inBoundary, outBoundary)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

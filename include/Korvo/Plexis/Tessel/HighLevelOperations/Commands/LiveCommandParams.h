#pragma once

#include <map>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Puts players on the live feed.
struct LiveCommandParams : CommandParams {
    std::map<Data::Channels::Guid, Data::Guid>
        players;  ///< for each player, the identifier of the feed it goes live on

    KORVO_FIELDS(LiveCommandParams, commandGuid, players)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

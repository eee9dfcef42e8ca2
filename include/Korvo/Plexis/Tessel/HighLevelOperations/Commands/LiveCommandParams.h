#pragma once

#include <map>
#include <tuple>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Puts players on the live feed.
struct LiveCommandParams : CommandParams {
    std::map<Data::Channels::Guid, Data::Guid>
        players;  ///< for each player, the identifier of the feed it goes live on

    auto Fields() const { return std::tie(commandGuid, players); }
    KORVO_COMPARED_BY_FIELDS(LiveCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

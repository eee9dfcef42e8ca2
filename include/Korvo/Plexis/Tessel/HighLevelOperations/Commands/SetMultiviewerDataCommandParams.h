#pragma once

#include <map>
#include <tuple>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Multiviewer/PlayerDataOverrides.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Sets the multiviewer overrides of players.
struct SetMultiviewerDataCommandParams : CommandParams {
    std::map<Data::Channels::Guid, Multiviewer::PlayerDataOverrides>
        playersDataOverrides;  ///< the overrides of each player

    auto Fields() const { return std::tie(commandGuid, playersDataOverrides); }
    KORVO_COMPARED_BY_FIELDS(SetMultiviewerDataCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

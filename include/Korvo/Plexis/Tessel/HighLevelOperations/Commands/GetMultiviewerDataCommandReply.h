#pragma once

#include <map>
#include <tuple>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Data/OperationStatus.h>
#include <Korvo/Plexis/Multiviewer/PlayerDataOverrides.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The multiviewer overrides of every player. Type code 13.
class GetMultiviewerDataCommandReply : public CommandReplyOfType<13> {
public:
    explicit GetMultiviewerDataCommandReply(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReplyOfType(commandGuid) {}

    std::map<Data::Channels::Guid, Multiviewer::PlayerDataOverrides>
        playerDataOverrides;       ///< by player
    Data::OperationStatus status;  ///< outcome of the command

    auto Fields() const { return std::tie(commandGuid, playerDataOverrides, status); }
    KORVO_COMPARED_BY_FIELDS(GetMultiviewerDataCommandReply)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

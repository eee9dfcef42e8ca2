#pragma once

#include <map>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>
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

    KORVO_FIELDS(GetMultiviewerDataCommandReply, commandGuid, playerDataOverrides, status)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

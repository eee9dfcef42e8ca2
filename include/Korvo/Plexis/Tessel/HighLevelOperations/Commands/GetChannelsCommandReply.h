#pragma once

#include <map>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/Channels/PlayerState.h>
#include <Korvo/Plexis/Data/Channels/RecorderState.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The state of every player and recorder, by channel. Type code 7.
class GetChannelsCommandReply : public CommandReplyOfType<7> {
public:
    explicit GetChannelsCommandReply(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReplyOfType(commandGuid) {}

    std::map<Data::Channels::Guid, Data::Channels::PlayerState> playerStates;
    std::map<Data::Channels::Guid, Data::Channels::RecorderState> recorderStates;

    KORVO_FIELDS(GetChannelsCommandReply, commandGuid, playerStates, recorderStates)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

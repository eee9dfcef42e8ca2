#pragma once

#include <cstdint>
#include <string>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>

namespace Korvo::Plexis::Notification {

/// The common part of every clip and angles-group notification: who changed what, when, through
/// which command. The root of the command side, apart from `Korvo::System::EventArgs`.
class CommandEventArgs {
public:
    virtual ~CommandEventArgs() = default;

    Data::Guid commandGuid;           ///< the command that caused the change; empty when none
    std::int32_t serverId = 0;        ///< the server where the change happened
    std::int32_t originType = 2;      ///< where the change came from; 2 is the server itself
    std::int32_t channelNumber = 0;   ///< the channel that made the change, if any
    std::int32_t sequenceNumber = 0;  ///< position of this event among those of one command
    std::int32_t result = -1;         ///< outcome code of the command; -1 until known
    std::int64_t timestamp = 0;       ///< server clock when the event happened
    std::string userName;             ///< the operator or application behind the change

    KORVO_FIELDS(CommandEventArgs, commandGuid, serverId, KORVO_THIS_SIDE_ONLY(originType),
                 channelNumber, KORVO_THIS_SIDE_ONLY(sequenceNumber), result, timestamp, userName)
};

}  // namespace Korvo::Plexis::Notification

#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/StatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the channel status notifications: the channel whose state changed.
class ChannelStatusEventArgs : public StatusEventArgs {
public:
    Data::Channels::Guid channelGuid{Data::Channels::Guid::Undefined, 0,
                                     0};  ///< the player or recorder; undefined until converted
    std::int32_t serverId = 0;            ///< the server that hosts the channel
    std::int64_t timestamp = 0;           ///< server clock when the state changed

    KORVO_FIELDS(ChannelStatusEventArgs, KORVO_BASE_FIELDS(StatusEventArgs), channelGuid, serverId,
                 timestamp)
};

}  // namespace Korvo::Plexis::Notification

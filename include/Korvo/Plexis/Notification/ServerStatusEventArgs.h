#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/StatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the server status notifications: the server concerned.
class ServerStatusEventArgs : public StatusEventArgs {
public:
    std::int32_t serverId = 0;  ///< the server concerned

    KORVO_FIELDS(ServerStatusEventArgs, KORVO_BASE_FIELDS(StatusEventArgs), serverId)
};

}  // namespace Korvo::Plexis::Notification

#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ServerStatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A server lost the network ("DisconnectedFromNetwork").
class DisconnectedFromNetworkEventArgs : public ServerStatusEventArgs {
public:
    KORVO_FIELDS(DisconnectedFromNetworkEventArgs, KORVO_BASE_FIELDS(ServerStatusEventArgs))
};

}  // namespace Korvo::Plexis::Notification

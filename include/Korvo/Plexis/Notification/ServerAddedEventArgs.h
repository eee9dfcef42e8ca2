#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Servers/ServerInfo.h>
#include <Korvo/Plexis/Notification/ServerStatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A server appeared ("ServerAdded").
class ServerAddedEventArgs : public ServerStatusEventArgs {
public:
    Data::Servers::ServerInfo server;  ///< what is known of it

    KORVO_FIELDS(ServerAddedEventArgs, KORVO_BASE_FIELDS(ServerStatusEventArgs), server)
};

}  // namespace Korvo::Plexis::Notification

#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/Servers/ServerInfo.h>
#include <Korvo/Plexis/Notification/ServerStatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A server appeared ("ServerAdded").
class ServerAddedEventArgs : public ServerStatusEventArgs {
public:
    Data::Servers::ServerInfo server;  ///< what is known of it

    auto Fields() const {
        return std::tuple_cat(ServerStatusEventArgs::Fields(), std::tie(server));
    }
    KORVO_COMPARED_BY_FIELDS(ServerAddedEventArgs)
};

}  // namespace Korvo::Plexis::Notification

#pragma once

namespace Korvo::Plexis::Notification {

/// The server status notifications.
struct ServerStatusEvent {
    enum Type : int {
        ServerAdded = 0,
        ServerRemoved = 1,
        DisconnectedFromNetwork = 2,
    };
};

}  // namespace Korvo::Plexis::Notification

#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ServerStatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A server disappeared ("ServerRemoved").
class ServerRemovedEventArgs : public ServerStatusEventArgs {
public:
    KORVO_FIELDS(ServerRemovedEventArgs, KORVO_BASE_FIELDS(ServerStatusEventArgs))
};

}  // namespace Korvo::Plexis::Notification

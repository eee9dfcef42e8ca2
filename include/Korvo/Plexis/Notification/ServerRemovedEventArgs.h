#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/ServerStatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A server disappeared ("ServerRemoved").
class ServerRemovedEventArgs : public ServerStatusEventArgs {
public:
    auto Fields() const { return std::tuple_cat(ServerStatusEventArgs::Fields()); }
    KORVO_COMPARED_BY_FIELDS(ServerRemovedEventArgs)
};

}  // namespace Korvo::Plexis::Notification

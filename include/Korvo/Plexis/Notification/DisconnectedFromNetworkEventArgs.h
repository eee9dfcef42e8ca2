#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/ServerStatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A server lost the network ("DisconnectedFromNetwork").
class DisconnectedFromNetworkEventArgs : public ServerStatusEventArgs {
public:
    auto Fields() const { return std::tuple_cat(ServerStatusEventArgs::Fields()); }
    KORVO_COMPARED_BY_FIELDS(DisconnectedFromNetworkEventArgs)
};

}  // namespace Korvo::Plexis::Notification

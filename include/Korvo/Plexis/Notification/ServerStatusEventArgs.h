#pragma once

#include <cstdint>
#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/StatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the server status notifications: the server concerned.
class ServerStatusEventArgs : public StatusEventArgs {
public:
    std::int32_t serverId = 0;  ///< the server concerned

    auto Fields() const { return std::tuple_cat(StatusEventArgs::Fields(), std::tie(serverId)); }
    KORVO_COMPARED_BY_FIELDS(ServerStatusEventArgs)
};

}  // namespace Korvo::Plexis::Notification

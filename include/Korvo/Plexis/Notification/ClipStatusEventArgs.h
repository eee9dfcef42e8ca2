#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/StatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the clip status notifications.
class ClipStatusEventArgs : public StatusEventArgs {
public:
    auto Fields() const { return std::tuple_cat(StatusEventArgs::Fields()); }
    KORVO_COMPARED_BY_FIELDS(ClipStatusEventArgs)
};

}  // namespace Korvo::Plexis::Notification

#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/System/EventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the status notifications.
class StatusEventArgs : public System::EventArgs {
public:
    auto Fields() const { return std::tuple_cat(); }
    KORVO_COMPARED_BY_FIELDS(StatusEventArgs)
};

}  // namespace Korvo::Plexis::Notification

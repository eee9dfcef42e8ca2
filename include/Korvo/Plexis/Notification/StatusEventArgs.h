#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/System/EventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the status notifications.
class StatusEventArgs : public System::EventArgs {
public:
    KORVO_NO_FIELDS(StatusEventArgs)
};

}  // namespace Korvo::Plexis::Notification

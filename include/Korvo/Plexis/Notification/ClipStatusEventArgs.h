#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/StatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the clip status notifications.
class ClipStatusEventArgs : public StatusEventArgs {
public:
    KORVO_FIELDS(ClipStatusEventArgs, KORVO_BASE_FIELDS(StatusEventArgs))
};

}  // namespace Korvo::Plexis::Notification

#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/CommandEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the clip and angles-group notifications.
class ClipCommandEventArgs : public CommandEventArgs {
public:
    KORVO_FIELDS(ClipCommandEventArgs, KORVO_BASE_FIELDS(CommandEventArgs))
};

}  // namespace Korvo::Plexis::Notification

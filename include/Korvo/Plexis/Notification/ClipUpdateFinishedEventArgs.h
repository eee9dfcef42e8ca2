#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ClipUpdateEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A clip was updated ("ClipUpdateFinished").
class ClipUpdateFinishedEventArgs : public ClipUpdateEventArgs {
public:
    KORVO_FIELDS(ClipUpdateFinishedEventArgs, KORVO_BASE_FIELDS(ClipUpdateEventArgs))
};

}  // namespace Korvo::Plexis::Notification

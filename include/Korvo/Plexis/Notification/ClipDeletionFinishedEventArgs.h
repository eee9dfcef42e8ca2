#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ClipDeletionEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A clip was deleted ("ClipDeletionFinished").
class ClipDeletionFinishedEventArgs : public ClipDeletionEventArgs {
public:
    KORVO_FIELDS(ClipDeletionFinishedEventArgs, KORVO_BASE_FIELDS(ClipDeletionEventArgs))
};

}  // namespace Korvo::Plexis::Notification

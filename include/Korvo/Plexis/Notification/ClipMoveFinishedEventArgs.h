#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ClipMoveEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A clip was moved ("ClipMoveFinished").
class ClipMoveFinishedEventArgs : public ClipMoveEventArgs {
public:
    KORVO_FIELDS(ClipMoveFinishedEventArgs, KORVO_BASE_FIELDS(ClipMoveEventArgs))
};

}  // namespace Korvo::Plexis::Notification

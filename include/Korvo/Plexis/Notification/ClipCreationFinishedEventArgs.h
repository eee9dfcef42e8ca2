#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ClipCreationEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A clip was created ("ClipCreationFinished").
class ClipCreationFinishedEventArgs : public ClipCreationEventArgs {
public:
    KORVO_FIELDS(ClipCreationFinishedEventArgs, KORVO_BASE_FIELDS(ClipCreationEventArgs))
};

}  // namespace Korvo::Plexis::Notification

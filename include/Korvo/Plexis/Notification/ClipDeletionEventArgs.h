#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ClipCommandEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the clip deletion notifications.
class ClipDeletionEventArgs : public ClipCommandEventArgs {
public:
    Data::Clips::Clip clip;     ///< the clip deleted
    std::int64_t revision = 0;  ///< clip database revision after the change

    KORVO_FIELDS(ClipDeletionEventArgs, KORVO_BASE_FIELDS_AS(ClipCommandEventArgs, command), clip,
                 revision)
};

}  // namespace Korvo::Plexis::Notification

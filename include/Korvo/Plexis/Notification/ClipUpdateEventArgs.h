#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ClipCommandEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the clip update notifications.
class ClipUpdateEventArgs : public ClipCommandEventArgs {
public:
    Data::Clips::Clip oldClip;  ///< the clip before the update
    Data::Clips::Clip newClip;  ///< the clip after the update
    bool succeeded = false;     ///< the update was applied
    std::int64_t revision = 0;  ///< clip database revision after the change

    KORVO_FIELDS(ClipUpdateEventArgs, KORVO_BASE_FIELDS_AS(ClipCommandEventArgs, command), oldClip,
                 newClip, succeeded, revision)
};

}  // namespace Korvo::Plexis::Notification

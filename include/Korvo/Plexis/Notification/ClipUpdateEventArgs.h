#pragma once

#include <cstdint>
#include <tuple>

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/ClipCommandEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the clip update notifications.
class ClipUpdateEventArgs : public ClipCommandEventArgs {
public:
    Data::Clips::Clip oldClip;  ///< the clip before the update
    Data::Clips::Clip newClip;  ///< the clip after the update
    bool succeeded = false;     ///< the update was applied
    std::int64_t revision = 0;  ///< clip database revision after the change

    auto Fields() const {
        return std::tuple_cat(ClipCommandEventArgs::Fields(),
                              std::tie(oldClip, newClip, succeeded, revision));
    }
    KORVO_COMPARED_BY_FIELDS(ClipUpdateEventArgs)
};

}  // namespace Korvo::Plexis::Notification

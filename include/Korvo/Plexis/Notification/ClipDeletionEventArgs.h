#pragma once

#include <cstdint>
#include <tuple>

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/ClipCommandEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the clip deletion notifications.
class ClipDeletionEventArgs : public ClipCommandEventArgs {
public:
    Data::Clips::Clip clip;     ///< the clip deleted
    std::int64_t revision = 0;  ///< clip database revision after the change

    auto Fields() const {
        return std::tuple_cat(ClipCommandEventArgs::Fields(), std::tie(clip, revision));
    }
    KORVO_COMPARED_BY_FIELDS(ClipDeletionEventArgs)
};

}  // namespace Korvo::Plexis::Notification

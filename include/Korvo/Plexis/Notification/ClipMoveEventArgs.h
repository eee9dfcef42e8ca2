#pragma once

#include <cstdint>
#include <tuple>

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/ClipCommandEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A clip is being moved ("ClipMoveStarted").
class ClipMoveEventArgs : public ClipCommandEventArgs {
public:
    Data::Clips::Clip oldClip;  ///< the clip where it was
    Data::Clips::Clip newClip;  ///< the clip where it goes
    std::int64_t revision = 0;  ///< clip database revision after the change

    auto Fields() const {
        return std::tuple_cat(ClipCommandEventArgs::Fields(), std::tie(oldClip, newClip, revision));
    }
    KORVO_COMPARED_BY_FIELDS(ClipMoveEventArgs)
};

}  // namespace Korvo::Plexis::Notification

#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ClipCommandEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A clip is being moved ("ClipMoveStarted").
class ClipMoveEventArgs : public ClipCommandEventArgs {
public:
    Data::Clips::Clip oldClip;  ///< the clip where it was
    Data::Clips::Clip newClip;  ///< the clip where it goes
    std::int64_t revision = 0;  ///< clip database revision after the change

    KORVO_FIELDS(ClipMoveEventArgs, KORVO_BASE_FIELDS_AS(ClipCommandEventArgs, command), oldClip,
                 newClip, revision)
};

}  // namespace Korvo::Plexis::Notification

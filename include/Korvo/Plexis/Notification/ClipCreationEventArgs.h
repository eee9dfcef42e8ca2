#pragma once

#include <cstdint>
#include <string>

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ClipCommandEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A clip is being created ("ClipCreationStarted").
class ClipCreationEventArgs : public ClipCommandEventArgs {
public:
    Data::Clips::Clip clip;        ///< the clip
    Data::Clips::Clip sourceClip;  ///< the clip or train it is created from
    std::string inTimecode;        ///< in point of the new clip, as displayed
    std::string outTimecode;       ///< out point of the new clip, as displayed
    std::int64_t revision = 0;     ///< clip database revision after the change

    KORVO_FIELDS(ClipCreationEventArgs, KORVO_BASE_FIELDS_AS(ClipCommandEventArgs, command), clip,
                 sourceClip, inTimecode, outTimecode, revision)
};

}  // namespace Korvo::Plexis::Notification

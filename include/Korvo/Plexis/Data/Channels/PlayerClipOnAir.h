#pragma once

#include <cstdint>
#include <string>

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Data::Channels {

/// A clip as a player has it on air.
struct PlayerClipOnAir {
    Clips::Clip clip;           ///< the clip
    std::int64_t position = 0;  ///< fields from the clip's in point to the on-air field
    std::string todTimecode;    ///< time-of-day time code of the on-air field, as displayed
    std::string userTimecode;   ///< user time code of the on-air field, as displayed

    KORVO_FIELDS(PlayerClipOnAir, clip, position, todTimecode, userTimecode)
};

}  // namespace Korvo::Plexis::Data::Channels

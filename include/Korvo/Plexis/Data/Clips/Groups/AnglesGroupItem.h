#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>

namespace Korvo::Plexis::Data::Clips::Groups {

/// One angle of a group: a clip and the camera it was recorded from.
struct AnglesGroupItem {
    Data::Guid clipGuid;      ///< the clip that shows this angle
    std::int32_t camera = 0;  ///< the camera the angle was recorded from

    KORVO_FIELDS(AnglesGroupItem, clipGuid, camera)
};

}  // namespace Korvo::Plexis::Data::Clips::Groups

#pragma once

#include <cstdint>
#include <map>

#include <Korvo/Plexis/Data/Clips/Groups/AnglesGroupItem.h>
#include <Korvo/Plexis/Data/Clips/Groups/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Data::Clips::Groups {

/// Clips of one action seen by several cameras, kept together.
struct AnglesGroup {
    Guid groupGuid;                                  ///< the group's identifier
    std::map<std::int32_t, AnglesGroupItem> angles;  ///< the group's angles, keyed by their index

    KORVO_FIELDS(AnglesGroup, groupGuid, angles)
};

}  // namespace Korvo::Plexis::Data::Clips::Groups

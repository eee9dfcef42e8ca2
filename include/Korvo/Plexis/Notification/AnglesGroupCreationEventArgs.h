#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/Clips/Groups/AnglesGroup.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ClipCommandEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the angles-group creation notifications.
class AnglesGroupCreationEventArgs : public ClipCommandEventArgs {
public:
    Data::Clips::Groups::AnglesGroup anglesGroup;  ///< the group created
    std::int64_t revision = 0;                     ///< clip database revision after the change

    KORVO_FIELDS(AnglesGroupCreationEventArgs, KORVO_BASE_FIELDS_AS(ClipCommandEventArgs, command),
                 anglesGroup, revision)
};

}  // namespace Korvo::Plexis::Notification

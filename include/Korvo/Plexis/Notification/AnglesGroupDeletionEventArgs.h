#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/Clips/Groups/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ClipCommandEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the angles-group deletion notifications.
class AnglesGroupDeletionEventArgs : public ClipCommandEventArgs {
public:
    Data::Clips::Groups::Guid groupGuid;  ///< the group deleted
    std::int64_t revision = 0;            ///< clip database revision after the change

    KORVO_FIELDS(AnglesGroupDeletionEventArgs, KORVO_BASE_FIELDS_AS(ClipCommandEventArgs, command),
                 groupGuid, revision)
};

}  // namespace Korvo::Plexis::Notification

#pragma once

#include <cstdint>
#include <tuple>

#include <Korvo/Plexis/Data/Clips/Groups/Guid.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/ClipCommandEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the angles-group deletion notifications.
class AnglesGroupDeletionEventArgs : public ClipCommandEventArgs {
public:
    Data::Clips::Groups::Guid groupGuid;  ///< the group deleted
    std::int64_t revision = 0;            ///< clip database revision after the change

    auto Fields() const {
        return std::tuple_cat(ClipCommandEventArgs::Fields(), std::tie(groupGuid, revision));
    }
    KORVO_COMPARED_BY_FIELDS(AnglesGroupDeletionEventArgs)
};

}  // namespace Korvo::Plexis::Notification

#pragma once

#include <cstdint>
#include <tuple>

#include <Korvo/Plexis/Data/Clips/Groups/AnglesGroup.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/ClipCommandEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the angles-group creation notifications.
class AnglesGroupCreationEventArgs : public ClipCommandEventArgs {
public:
    Data::Clips::Groups::AnglesGroup anglesGroup;  ///< the group created
    std::int64_t revision = 0;                     ///< clip database revision after the change

    auto Fields() const {
        return std::tuple_cat(ClipCommandEventArgs::Fields(), std::tie(anglesGroup, revision));
    }
    KORVO_COMPARED_BY_FIELDS(AnglesGroupCreationEventArgs)
};

}  // namespace Korvo::Plexis::Notification

#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/CommandEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Base of the clip and angles-group notifications.
class ClipCommandEventArgs : public CommandEventArgs {
public:
    auto Fields() const { return std::tuple_cat(CommandEventArgs::Fields()); }
    KORVO_COMPARED_BY_FIELDS(ClipCommandEventArgs)
};

}  // namespace Korvo::Plexis::Notification

#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/ClipUpdateEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A clip was updated ("ClipUpdateFinished").
class ClipUpdateFinishedEventArgs : public ClipUpdateEventArgs {
public:
    auto Fields() const { return std::tuple_cat(ClipUpdateEventArgs::Fields()); }
    KORVO_COMPARED_BY_FIELDS(ClipUpdateFinishedEventArgs)
};

}  // namespace Korvo::Plexis::Notification

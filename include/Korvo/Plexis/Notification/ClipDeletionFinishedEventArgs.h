#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/ClipDeletionEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A clip was deleted ("ClipDeletionFinished").
class ClipDeletionFinishedEventArgs : public ClipDeletionEventArgs {
public:
    auto Fields() const { return std::tuple_cat(ClipDeletionEventArgs::Fields()); }
    KORVO_COMPARED_BY_FIELDS(ClipDeletionFinishedEventArgs)
};

}  // namespace Korvo::Plexis::Notification

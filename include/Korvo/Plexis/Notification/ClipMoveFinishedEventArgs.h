#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/ClipMoveEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A clip was moved ("ClipMoveFinished").
class ClipMoveFinishedEventArgs : public ClipMoveEventArgs {
public:
    auto Fields() const { return std::tuple_cat(ClipMoveEventArgs::Fields()); }
    KORVO_COMPARED_BY_FIELDS(ClipMoveFinishedEventArgs)
};

}  // namespace Korvo::Plexis::Notification

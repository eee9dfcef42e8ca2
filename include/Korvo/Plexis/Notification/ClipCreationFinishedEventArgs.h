#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/ClipCreationEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A clip was created ("ClipCreationFinished").
class ClipCreationFinishedEventArgs : public ClipCreationEventArgs {
public:
    auto Fields() const { return std::tuple_cat(ClipCreationEventArgs::Fields()); }
    KORVO_COMPARED_BY_FIELDS(ClipCreationFinishedEventArgs)
};

}  // namespace Korvo::Plexis::Notification

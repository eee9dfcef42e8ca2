#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/AnglesGroupCreationEventArgs.h>

namespace Korvo::Plexis::Notification {

/// An angles group was created ("AnglesGroupCreationFinished").
class AnglesGroupCreationFinishedEventArgs : public AnglesGroupCreationEventArgs {
public:
    auto Fields() const { return std::tuple_cat(AnglesGroupCreationEventArgs::Fields()); }
    KORVO_COMPARED_BY_FIELDS(AnglesGroupCreationFinishedEventArgs)
};

}  // namespace Korvo::Plexis::Notification

#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/AnglesGroupDeletionEventArgs.h>

namespace Korvo::Plexis::Notification {

/// An angles group was deleted ("AnglesGroupDeletionFinished").
class AnglesGroupDeletionFinishedEventArgs : public AnglesGroupDeletionEventArgs {
public:
    auto Fields() const { return std::tuple_cat(AnglesGroupDeletionEventArgs::Fields()); }
    KORVO_COMPARED_BY_FIELDS(AnglesGroupDeletionFinishedEventArgs)
};

}  // namespace Korvo::Plexis::Notification

#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/AnglesGroupUpdateEventArgs.h>

namespace Korvo::Plexis::Notification {

/// An angles group was updated ("AnglesGroupUpdateFinished").
class AnglesGroupUpdateFinishedEventArgs : public AnglesGroupUpdateEventArgs {
public:
    auto Fields() const { return std::tuple_cat(AnglesGroupUpdateEventArgs::Fields()); }
    KORVO_COMPARED_BY_FIELDS(AnglesGroupUpdateFinishedEventArgs)
};

}  // namespace Korvo::Plexis::Notification

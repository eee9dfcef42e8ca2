#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/AnglesGroupUpdateEventArgs.h>

namespace Korvo::Plexis::Notification {

/// An angles group was updated ("AnglesGroupUpdateFinished").
class AnglesGroupUpdateFinishedEventArgs : public AnglesGroupUpdateEventArgs {
public:
    KORVO_FIELDS(AnglesGroupUpdateFinishedEventArgs,
                 KORVO_BASE_FIELDS_AS(AnglesGroupUpdateEventArgs, update))
};

}  // namespace Korvo::Plexis::Notification

#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/AnglesGroupDeletionEventArgs.h>

namespace Korvo::Plexis::Notification {

/// An angles group was deleted ("AnglesGroupDeletionFinished").
class AnglesGroupDeletionFinishedEventArgs : public AnglesGroupDeletionEventArgs {
public:
    KORVO_FIELDS(AnglesGroupDeletionFinishedEventArgs,
                 KORVO_BASE_FIELDS_AS(AnglesGroupDeletionEventArgs, deletion))
};

}  // namespace Korvo::Plexis::Notification

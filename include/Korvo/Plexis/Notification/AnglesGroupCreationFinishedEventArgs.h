#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/AnglesGroupCreationEventArgs.h>

namespace Korvo::Plexis::Notification {

/// An angles group was created ("AnglesGroupCreationFinished").
class AnglesGroupCreationFinishedEventArgs : public AnglesGroupCreationEventArgs {
public:
    KORVO_FIELDS(AnglesGroupCreationFinishedEventArgs,
                 KORVO_BASE_FIELDS_AS(AnglesGroupCreationEventArgs, creation))
};

}  // namespace Korvo::Plexis::Notification

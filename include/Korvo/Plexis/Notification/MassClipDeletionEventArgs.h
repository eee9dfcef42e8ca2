#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ClipCommandEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Many clips were deleted at once ("MassClipDeletionFinished").
class MassClipDeletionEventArgs : public ClipCommandEventArgs {
public:
    std::int64_t clipCount = 0;  ///< number of clips deleted
    std::int64_t revision = 0;   ///< clip database revision after the change

    KORVO_FIELDS(MassClipDeletionEventArgs, KORVO_BASE_FIELDS_AS(ClipCommandEventArgs, command),
                 clipCount, revision)
};

}  // namespace Korvo::Plexis::Notification

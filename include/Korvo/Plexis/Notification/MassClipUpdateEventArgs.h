#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ClipCommandEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Many clips were updated at once ("MassClipUpdateFinished").
class MassClipUpdateEventArgs : public ClipCommandEventArgs {
public:
    std::int64_t clipCount = 0;  ///< number of clips updated
    std::int64_t revision = 0;   ///< clip database revision after the change

    KORVO_FIELDS(MassClipUpdateEventArgs, KORVO_BASE_FIELDS_AS(ClipCommandEventArgs, command),
                 clipCount, revision)
};

}  // namespace Korvo::Plexis::Notification

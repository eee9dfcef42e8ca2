#pragma once

#include <cstdint>
#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/ClipCommandEventArgs.h>

namespace Korvo::Plexis::Notification {

/// Many clips were updated at once ("MassClipUpdateFinished").
class MassClipUpdateEventArgs : public ClipCommandEventArgs {
public:
    std::int64_t clipCount = 0;  ///< number of clips updated
    std::int64_t revision = 0;   ///< clip database revision after the change

    auto Fields() const {
        return std::tuple_cat(ClipCommandEventArgs::Fields(), std::tie(clipCount, revision));
    }
    KORVO_COMPARED_BY_FIELDS(MassClipUpdateEventArgs)
};

}  // namespace Korvo::Plexis::Notification

#pragma once

#include <optional>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Changes the primary or secondary angle of a group.
struct UpdateAnglesGroupCommandParams : CommandParams {
    Data::Guid groupGuid;                      ///< the group to change
    std::optional<Data::Guid> primaryAngle;    ///< the new primary angle, when set
    std::optional<Data::Guid> secondaryAngle;  ///< the new secondary angle, when set

    KORVO_FIELDS(UpdateAnglesGroupCommandParams, commandGuid, groupGuid, primaryAngle,
                 secondaryAngle)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

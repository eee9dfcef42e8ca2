#pragma once

#include <optional>
#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Changes the primary or secondary angle of a group.
struct UpdateAnglesGroupCommandParams : CommandParams {
    Data::Guid groupGuid;                      ///< the group to change
    std::optional<Data::Guid> primaryAngle;    ///< the new primary angle, when set
    std::optional<Data::Guid> secondaryAngle;  ///< the new secondary angle, when set

    auto Fields() const { return std::tie(commandGuid, groupGuid, primaryAngle, secondaryAngle); }
    KORVO_COMPARED_BY_FIELDS(UpdateAnglesGroupCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

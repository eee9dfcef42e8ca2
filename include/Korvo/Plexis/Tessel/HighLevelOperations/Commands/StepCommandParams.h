#pragma once

#include <cstdint>
#include <set>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Steps players by a number of video fields.
struct StepCommandParams : CommandParams {
    std::set<Data::Channels::Guid> players;
    std::int32_t fieldCount = 0;  ///< video fields to step; negative steps back

    KORVO_FIELDS(StepCommandParams, commandGuid, players, fieldCount)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

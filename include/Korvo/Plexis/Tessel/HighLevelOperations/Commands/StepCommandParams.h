#pragma once

#include <cstdint>
#include <set>
#include <tuple>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Steps players by a number of video fields.
struct StepCommandParams : CommandParams {
    std::set<Data::Channels::Guid> players;
    std::int32_t fieldCount = 0;  ///< video fields to step; negative steps back

    auto Fields() const { return std::tie(commandGuid, players, fieldCount); }
    KORVO_COMPARED_BY_FIELDS(StepCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

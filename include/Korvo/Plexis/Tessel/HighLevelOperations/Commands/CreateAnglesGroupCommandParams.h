#pragma once

#include <cstdint>
#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CreateClipsCommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Creates an angles group together with its clips.
struct CreateAnglesGroupCommandParams : CommandParams {
    std::int32_t groupKivIndex = 0;
    CreateClipsCommandParams creationParams;  ///< the clips of the group, as a whole clip-creation
                                              ///< command with its own identifier

    auto Fields() const { return std::tie(commandGuid, groupKivIndex, creationParams); }
    KORVO_COMPARED_BY_FIELDS(CreateAnglesGroupCommandParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

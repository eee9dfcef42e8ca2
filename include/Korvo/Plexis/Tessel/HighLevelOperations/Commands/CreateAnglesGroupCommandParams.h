#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CreateClipsCommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Creates an angles group together with its clips.
struct CreateAnglesGroupCommandParams : CommandParams {
    std::int32_t groupKivIndex = 0;
    CreateClipsCommandParams creationParams;  ///< the clips of the group, as a whole clip-creation
                                              ///< command with its own identifier

    KORVO_FIELDS(CreateAnglesGroupCommandParams, commandGuid, groupKivIndex, creationParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

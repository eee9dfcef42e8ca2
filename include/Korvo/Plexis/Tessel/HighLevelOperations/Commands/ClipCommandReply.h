#pragma once

#include <vector>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ClipResult.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The outcome of a clip command (create, update, delete), one result per clip. Type code 3.
class ClipCommandReply : public CommandReplyOfType<3> {
public:
    explicit ClipCommandReply(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReplyOfType(commandGuid) {}

    std::vector<ClipResult> results;  ///< one entry per clip handled

    KORVO_FIELDS(ClipCommandReply, commandGuid, results)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

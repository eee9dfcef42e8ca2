#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The command succeeded. Type code 1.
class SuccessReply : public CommandReplyOfType<1> {
public:
    explicit SuccessReply(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReplyOfType(commandGuid) {}

    KORVO_FIELDS(SuccessReply, commandGuid)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

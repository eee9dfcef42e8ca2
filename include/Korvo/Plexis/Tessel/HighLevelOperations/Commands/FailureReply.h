#pragma once

#include <string>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The command failed. Type code 2.
class FailureReply : public CommandReplyOfType<2> {
public:
    explicit FailureReply(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReplyOfType(commandGuid) {}

    std::string message;  ///< the server's description of the failure

    KORVO_FIELDS(FailureReply, commandGuid, message)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

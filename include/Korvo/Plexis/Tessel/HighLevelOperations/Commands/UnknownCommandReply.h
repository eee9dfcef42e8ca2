#pragma once

#include <string>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The server did not know the command ("UnknownCommand"). Type code 0.
class UnknownCommandReply : public CommandReplyOfType<0> {
public:
    explicit UnknownCommandReply(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReplyOfType(commandGuid) {}

    std::string message;  ///< the server's text about the command

    KORVO_FIELDS(UnknownCommandReply, KORVO_THIS_SIDE_ONLY(commandGuid), message)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

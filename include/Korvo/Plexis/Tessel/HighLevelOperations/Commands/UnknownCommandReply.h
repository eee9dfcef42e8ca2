#pragma once

#include <string>
#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The server did not know the command ("UnknownCommand"). Type code 0.
class UnknownCommandReply : public CommandReplyOfType<0> {
public:
    explicit UnknownCommandReply(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReplyOfType(commandGuid) {}

    std::string message;  ///< the server's text about the command

    auto Fields() const { return std::tie(commandGuid, message); }
    KORVO_COMPARED_BY_FIELDS(UnknownCommandReply)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The command succeeded. Type code 1.
class SuccessReply : public CommandReplyOfType<1> {
public:
    explicit SuccessReply(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReplyOfType(commandGuid) {}

    auto Fields() const { return std::tie(commandGuid); }
    KORVO_COMPARED_BY_FIELDS(SuccessReply)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

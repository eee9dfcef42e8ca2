#pragma once

#include <tuple>
#include <vector>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Data/Servers/ServerInfo.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The servers of the system. Type code 12.
class GetServersCommandReply : public CommandReplyOfType<12> {
public:
    explicit GetServersCommandReply(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReplyOfType(commandGuid) {}

    std::vector<Data::Servers::ServerInfo> servers;

    auto Fields() const { return std::tie(commandGuid, servers); }
    KORVO_COMPARED_BY_FIELDS(GetServersCommandReply)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

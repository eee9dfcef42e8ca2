#pragma once

#include <vector>

#include <Korvo/Plexis/Data/FieldList.h>
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

    KORVO_FIELDS(GetServersCommandReply, commandGuid, servers)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

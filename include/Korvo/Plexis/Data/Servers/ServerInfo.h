#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Data::Servers {

/// One server known to the system. Value sets are the server's.
struct ServerInfo {
    std::int32_t serverId = 0;                 ///< the server's number in the system
    std::int32_t status = 0;                   ///< online, offline, ...
    std::string name;                          ///< the server's name
    std::int32_t serverType = 0;               ///< kind of server
    std::string hostName;                      ///< network name of the server's machine
    std::string version;                       ///< software version the server runs
    std::int32_t channelCount = 0;             ///< number of playout channels
    std::vector<std::int32_t> channelNumbers;  ///< numbers of its playout channels
    bool isLocal = false;                      ///< the server this client is attached to

    KORVO_FIELDS(ServerInfo, serverId, status, name, serverType, hostName, version, channelCount,
                 channelNumbers, isLocal)
};

}  // namespace Korvo::Plexis::Data::Servers

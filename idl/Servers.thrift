// The servers of the system.

namespace cpp Korvo.Plexis.Tessel.Serialization.Thrift.Data.Servers.Generated

// One server known to the system.
struct ServerInfo {
  1: optional i32 serverId,  // the server's number in the system
  2: optional i32 status,  // online, offline, ... (value set of the server)
  3: optional string name,  // the server's name
  4: optional i32 serverType,  // kind of server (value set of the server)
  5: optional string hostName,  // network name of the server's machine
  6: optional string version,  // software version the server runs
  7: optional i32 channelCount,  // number of playout channels
  8: optional list<i32> channelNumbers,  // numbers of its playout channels
  9: optional bool isLocal,  // the server this client is attached to
}

// The server's answers to commands. Only GetMultiviewerDataCommandReply and the angles-group
// records it may carry have required fields; everything else may be absent.

include "Common.thrift"
include "Channels.thrift"
include "Clips.thrift"
include "Sequences.thrift"
include "Servers.thrift"
include "AnglesGroups.thrift"

namespace cpp Korvo.Plexis.Tessel.Serialization.Thrift.Commands.Generated

struct SuccessReply {
  1: optional Common.Guid commandGuid,
}

struct FailureReply {
  1: optional Common.Guid commandGuid,
  2: optional string message,  // the server's description of the failure
}

// Carries no command identifier: the server could not tell which command it was.
struct UnknownCommandReply {
  1: optional string message,
}

// The outcome of a channel command on one channel.
struct ChannelResult {
  1: optional Common.Guid channelGuid,  // the player or recorder concerned
  2: optional Common.OperationStatus status,
}

struct ChannelCommandReply {
  1: optional Common.Guid commandGuid,
  2: optional list<ChannelResult> results,  // one per addressed channel, in the server's order
}

struct GetChannelsCommandReply {
  1: optional Common.Guid commandGuid,
  2: optional map<Common.Guid, Channels.PlayerState> playerStates,
  3: optional map<Common.Guid, Channels.RecorderState> recorderStates,
}

// Checked in field order after the stop field: a reply missing field 1 fails on field 1.
struct GetMultiviewerDataCommandReply {
  1: required Common.Guid commandGuid,
  2: required Common.OperationStatus status,
  3: required map<Common.Guid, Common.PlayerDataOverrides> playerDataOverrides,
}

struct ClipResultsItem {
  1: optional Common.OperationStatus status,
  2: optional Clips.Clip clip,
}

struct ClipCommandReply {
  1: optional Common.Guid commandGuid,
  2: optional list<ClipResultsItem> results,  // one per clip handled
}

struct PlaylistResultsItem {
  1: optional Common.OperationStatus status,
  2: optional Sequences.Playlist playlist,
}

struct PlaylistCommandReply {
  1: optional Common.Guid commandGuid,
  2: optional list<PlaylistResultsItem> results,  // one per playlist handled
}

// Field 4 nests a whole clip command reply, with its own command identifier.
struct AnglesGroupCommandReply {
  1: optional Common.Guid commandGuid,
  2: optional Common.Guid groupGuid,
  3: optional Common.OperationStatus status,
  4: optional ClipCommandReply clipCommandReply,
}

struct GetServersCommandReply {
  1: optional Common.Guid commandGuid,
  2: optional list<Servers.ServerInfo> servers,
}

// The four list replies share one shape: identifier, a 64-bit marker passed on unchanged, items.

struct GetClipsCommandReply {
  1: optional Common.Guid commandGuid,
  2: optional i64 marker,
  3: optional list<Clips.Clip> clips,
}

struct GetTrainsCommandReply {
  1: optional Common.Guid commandGuid,
  2: optional i64 marker,
  3: optional list<Clips.Train> trains,
}

struct GetPlaylistsCommandReply {
  1: optional Common.Guid commandGuid,
  2: optional i64 marker,
  3: optional list<Sequences.Playlist> playlists,
}

struct GetAnglesGroupsCommandReply {
  1: optional Common.Guid commandGuid,
  2: optional i64 marker,
  3: optional list<AnglesGroups.AnglesGroup> anglesGroups,
}

// Bodies of the notifications the server publishes. Only the angles-group records have required
// fields: a truncated angles-group notification is rejected, while a clip notification with
// missing fields is delivered with defaults.

include "Common.thrift"
include "Channels.thrift"
include "Clips.thrift"
include "Servers.thrift"
include "AnglesGroups.thrift"

namespace cpp Korvo.Plexis.Tessel.Serialization.Thrift.Notifier.Generated

// The common part of every clip and angles-group notification.
struct ClipCommandEventArgs {
  1: optional i64 timestamp,  // server clock when the event happened
  2: optional string userName,  // the operator or application behind the change
  3: optional i32 serverId,  // the server where the change happened
  4: optional i32 channelNumber,  // the channel that made the change, if any
  5: optional Common.Guid commandGuid,  // the command that caused the change
  6: optional i32 result,  // outcome code of that command
}

struct ClipCreationStartedEventArgs {
  1: optional ClipCommandEventArgs command,  // common part
  2: optional Clips.Clip clip,  // the clip being created
  3: optional Clips.Clip sourceClip,  // the clip or train it is created from
  4: optional string inTimecode,  // in point of the new clip, as displayed
  5: optional string outTimecode,  // out point of the new clip, as displayed
  6: optional i64 revision,  // clip database revision after the change
}

struct ClipCreationFinishedEventArgs {
  1: optional ClipCommandEventArgs command,  // common part
  2: optional Clips.Clip clip,  // the clip created
  3: optional Clips.Clip sourceClip,  // the clip or train it was created from
  4: optional string inTimecode,  // in point of the new clip, as displayed
  5: optional string outTimecode,  // out point of the new clip, as displayed
  6: optional i64 revision,  // clip database revision after the change
}

struct ClipUpdateFinishedEventArgs {
  1: optional ClipCommandEventArgs command,  // common part
  2: optional Clips.Clip oldClip,  // the clip before the update
  3: optional Clips.Clip newClip,  // the clip after the update
  4: optional bool succeeded,  // the update was applied
  5: optional i64 revision,  // clip database revision after the change
}

struct ClipDeletionFinishedEventArgs {
  1: optional ClipCommandEventArgs command,  // common part
  2: optional Clips.Clip clip,  // the clip deleted
  3: optional i64 revision,  // clip database revision after the change
}

struct ClipMoveStartedEventArgs {
  1: optional ClipCommandEventArgs command,  // common part
  2: optional Clips.Clip oldClip,  // the clip where it was
  3: optional Clips.Clip newClip,  // the clip where it goes
  4: optional i64 revision,  // clip database revision after the change
}

struct ClipMoveFinishedEventArgs {
  1: optional ClipCommandEventArgs command,  // common part
  2: optional Clips.Clip oldClip,  // the clip where it was
  3: optional Clips.Clip newClip,  // the clip where it went
  4: optional i64 revision,  // clip database revision after the change
}

struct MassClipUpdateFinishedEventArgs {
  1: optional ClipCommandEventArgs command,  // common part
  2: optional i64 clipCount,  // number of clips updated
  3: optional i64 revision,  // clip database revision after the change
}

struct MassClipDeletionFinishedEventArgs {
  1: optional ClipCommandEventArgs command,  // common part
  2: optional i64 clipCount,  // number of clips deleted
  3: optional i64 revision,  // clip database revision after the change
}

struct AnglesGroupCreationEventArgs {
  1: required ClipCommandEventArgs command,  // common part
  2: required AnglesGroups.AnglesGroup anglesGroup,  // the group created
  3: required i64 revision,  // clip database revision after the change
}

struct AnglesGroupUpdateEventArgs {
  1: required ClipCommandEventArgs command,  // common part
  2: required AnglesGroups.AnglesGroup anglesGroup,  // the group as updated
  3: required i64 revision,  // clip database revision after the change
}

struct AnglesGroupDeletionEventArgs {
  1: required ClipCommandEventArgs command,  // common part
  2: required Common.Guid groupGuid,  // the group deleted
  3: required i64 revision,  // clip database revision after the change
}

struct AnglesGroupCreationFinishedEventArgs {
  1: required AnglesGroupCreationEventArgs creation,
}

struct AnglesGroupUpdateFinishedEventArgs {
  1: required AnglesGroupUpdateEventArgs update,
}

struct AnglesGroupDeletionFinishedEventArgs {
  1: required AnglesGroupDeletionEventArgs deletion,
}

struct RecordingRangesChangedEventArgs {
  1: optional Common.Guid channelGuid,  // the recorder whose train changed
  2: optional list<Clips.RecordingRange> ranges,  // the train's recorded ranges now
  3: optional bool isRecording,  // the recorder is recording now
  4: optional bool isLoopRecording,  // the train is recorded in a loop
}

struct RecorderStateChangedEventArgs {
  1: optional i32 serverId,  // the server that hosts the recorder
  2: optional i64 timestamp,  // server clock when the state changed
  3: optional i32 channelNumber,  // the recorder's number on its server
  4: optional Channels.RecorderState state,  // the new state
}

struct PlayerStateChangedEventArgs {
  1: optional i32 serverId,  // the server that hosts the player
  2: optional i64 timestamp,  // server clock when the state changed
  3: optional i32 channelNumber,  // the player's number on its server
  4: optional Channels.PlayerState state,  // the new state
}

struct ServerAddedEventArgs {
  1: optional i32 serverId,  // the server that appeared
  2: optional Servers.ServerInfo server,  // what is known of it
}

struct ServerRemovedEventArgs {
  1: optional i32 serverId,  // the server that disappeared
}

struct DisconnectedFromNetworkEventArgs {
  1: optional i32 serverId,  // the server that lost the network
}

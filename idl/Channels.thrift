// Playout channels: where a player's loaded material starts and ends, and the states of players
// and recorders.

include "Clips.thrift"

namespace cpp Korvo.Plexis.Tessel.Serialization.Thrift.Data.Channels.Generated

struct AbsoluteLoadBoundary {
  1: i64 timepoint,  // an absolute time point
}

struct RelativeLoadBoundary {
  1: i64 fieldCount,  // a distance counted in video fields
}

// At most one member is set.
struct SpecializedLoadBoundary {
  1: optional AbsoluteLoadBoundary absoluteLoadBoundary,
  2: optional RelativeLoadBoundary relativeLoadBoundary,
}

// A load boundary whose value sits in the member that `type` selects.
struct LoadBoundary {
  1: i32 type,  // which kind of boundary this is (value set of the server)
  2: SpecializedLoadBoundary specializedLoadBoundary,  // the boundary's value
}

// A clip as a player has it on air.
struct PlayerClipOnAir {
  1: optional Clips.Clip clip,  // the clip
  2: optional i64 position,  // fields from the clip's in point to the on-air field
  3: optional string todTimecode,  // time-of-day time code of the on-air field, as displayed
  4: optional string userTimecode,  // user time code of the on-air field, as displayed
}

// The numbers a player shows about what it has on air.
struct PlayerInfoOnAir {
  1: optional i32 speedNumerator,  // current play speed, numerator
  2: optional i32 speedDenominator,  // current play speed, denominator
  3: optional i32 playMode,  // stopped, playing, jogging, shuttling (value set of the server)
  4: optional i32 loopMode,  // whether and how the loaded material loops
  5: optional i32 elementIndex,  // index of the on-air element in a loaded sequence
  6: optional i32 elementCount,  // number of elements of a loaded sequence
  7: optional i32 loopCount,  // loop runs completed
  8: optional i32 videoStandard,  // video standard of the output
  9: optional i32 controlMode,  // who controls the player
  10: optional i64 timepoint,  // absolute time point on air
  11: optional i64 position,  // fields from the start of the loaded material
  12: optional i64 inPoint,  // in point of the loaded material, in fields
  13: optional i64 outPoint,  // out point of the loaded material, in fields
  14: optional i64 duration,  // length of the loaded material, in fields
  15: optional i64 remaining,  // fields left before the out point
  16: optional i64 sequencePosition,  // fields from the start of a loaded sequence
  17: optional i64 sequenceDuration,  // length of a loaded sequence, in fields
  18: optional i64 updateTimestamp,  // server clock when these numbers were taken
}

// The state of a player channel.
struct PlayerState {
  1: optional i64 timestamp,  // server clock when the state was taken
  2: optional i32 channelNumber,  // the channel's number on its server
  3: optional string channelName,  // the channel's name
  4: optional i32 serverId,  // the server that hosts the channel
  5: optional i32 playMode,  // idle, cued, playing, live, ... (value set of the server)
  6: optional PlayerInfoOnAir infoOnAir,  // on-air information
  7: optional PlayerClipOnAir currentClip,  // the clip on air
  8: optional PlayerClipOnAir nextClip,  // the clip loaded to follow it
  9: optional i64 cueTimepoint,  // time point the player was cued to
  10: optional i64 currentTimepoint,  // time point on air
  11: optional i64 liveTimepoint,  // record time point followed when the player is live
  12: optional i64 chainTimepoint,  // time point where chained material starts
  13: optional string loadedClipUmId,  // material identifier of the loaded clip
  14: optional string loadedSequenceUmId,  // material identifier of the loaded sequence
  15: optional string liveRecorderName,  // recorder followed when the player is live
  16: optional string currentTimecode,  // time code on air, as displayed
  17: optional string inTimecode,  // time code of the in point, as displayed
  18: optional string outTimecode,  // time code of the out point, as displayed
  19: optional string remainingTimecode,  // time left before the out point, as displayed
  20: optional string durationTimecode,  // length of the loaded material, as displayed
  21: optional i32 loadedMaterialType,  // nothing, clip, sequence or live (value set of the server)
  22: optional LoadBoundary inBoundary,  // first load boundary
  23: optional LoadBoundary outBoundary,  // second load boundary
}

// The state of a recorder channel. Fields 1 to 4 are the head it shares with PlayerState.
struct RecorderState {
  1: optional i64 timestamp,  // server clock when the state was taken
  2: optional i32 channelNumber,  // the channel's number on its server
  3: optional string channelName,  // the channel's name
  4: optional i32 serverId,  // the server that hosts the channel
  5: optional bool isRecording,  // the recorder is recording now
  6: optional i64 recordStartTimepoint,  // time point where the current recording began
  7: optional i64 currentTimepoint,  // time point being recorded
  8: optional string currentTimecode,  // time code being recorded, as displayed
  9: optional string recordStartTimecode,  // time code where the current recording began
  10: optional i32 recordMode,  // continuous, loop, ... (value set of the server)
  11: optional i64 recordedFields,  // fields recorded so far
  12: optional i64 remainingFields,  // fields of storage left
  13: optional Clips.Clip clip,  // the recorder's clip
}

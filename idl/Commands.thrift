// Parameters of the channel commands. Every field is written on every encoding. Field 1 is the
// command's own identifier: "commandId" in PlayCommandParams, "commandGuid" everywhere else (the
// name is part of the generated code, so the difference stays).

include "Common.thrift"
include "Channels.thrift"

namespace cpp Korvo.Plexis.Tessel.Serialization.Thrift.Commands.Generated

struct PlayCommandParams {
  1: Common.Guid commandId,
  2: set<Common.Guid> players,
  3: i32 speedNum,  // play speed numerator
  4: i32 speedDen,  // play speed denominator
}

struct LiveCommandParams {
  1: Common.Guid commandGuid,
  2: map<Common.Guid, Common.Guid> players,  // player -> second identifier per player
}

struct ChainCommandParams {
  1: Common.Guid commandGuid,
  2: map<Common.Guid, Common.Guid> players,  // player -> second identifier per player
  3: i64 timepoint,  // where the chained material starts
  4: Channels.LoadBoundary inBoundary,
  5: Channels.LoadBoundary outBoundary,
}

struct DialCommandParams {
  1: Common.Guid commandGuid,
  2: set<Common.Guid> players,
  3: i32 velocity,  // dial (jog) velocity
}

struct StepCommandParams {
  1: Common.Guid commandGuid,
  2: set<Common.Guid> players,
  3: i32 fieldCount,  // signed number of video fields to step
}

struct SyncCommandParams {
  1: Common.Guid commandGuid,
  2: Common.Guid sourcePlayer,  // the player the others follow
  3: set<Common.Guid> players,
  4: Channels.LoadBoundary inBoundary,
  5: Channels.LoadBoundary outBoundary,
}

// What one player loads.
struct LoadClipCommandParam {
  1: Common.Guid clip,
  2: i64 timepoint,  // cue point
  3: Channels.LoadBoundary inBoundary,
  4: Channels.LoadBoundary outBoundary,
}

struct LoadClipsCommandParams {
  1: Common.Guid commandGuid,
  2: map<Common.Guid, LoadClipCommandParam> playersParameters,
}

struct LoadSequenceCommandParam {
  1: Common.Guid sequence,
  2: i64 durationFromBeginning,  // cue position from the sequence's start
  3: bool isForDiffusion,  // load for on-air diffusion
}

struct LoadSequencesCommandParams {
  1: Common.Guid commandGuid,
  2: map<Common.Guid, LoadSequenceCommandParam> playersParameters,
}

// Ids 1 and 2 are retired: the fields start at 3 and the gap must stay.
struct SetLoadBoundariesCommandParam {
  3: Channels.LoadBoundary inBoundary,
  4: Channels.LoadBoundary outBoundary,
}

struct SetLoadBoundariesCommandParams {
  1: Common.Guid commandGuid,
  2: map<Common.Guid, SetLoadBoundariesCommandParam> playersParameters,
}

struct GoIdleCommandParams {
  1: Common.Guid commandGuid,
  2: set<Common.Guid> players,
  3: bool setBlackScreen,  // show black while idle
}

struct StartRecordingCommandParams {
  1: Common.Guid commandGuid,
  2: set<Common.Guid> recorders,
}

struct StopRecordingCommandParams {
  1: Common.Guid commandGuid,
  2: set<Common.Guid> recorders,
}

struct GetChannelsCommandParams {
  1: Common.Guid commandGuid,
}

struct GetMultiviewerDataCommandParams {
  1: Common.Guid commandGuid,
}

struct SetMultiviewerDataCommandParams {
  1: Common.Guid commandGuid,
  2: map<Common.Guid, Common.PlayerDataOverrides> playersDataOverrides,
}

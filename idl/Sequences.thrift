// Sequences and playlists: a sequence's identity and settings, plus one track of audio-video
// elements that place material with its effects, boundaries, tags and speed.

include "Clips.thrift"

namespace cpp Korvo.Plexis.Tessel.Serialization.Thrift.Data.Sequences.Generated

// A play speed as a fraction (32-bit, unlike a sequence's 64-bit play rate).
struct Speed {
  1: i32 numerator,
  2: i32 denominator,
}

// Identifies a sequence by where it is stored.
struct SequenceId {
  1: i32 location,
  2: i32 serverId,
}

struct TagProperty {
  1: i32 dataType,
  2: list<i32> value,
}

struct Tag {
  1: i32 id,
  2: i32 commandType,
  3: i64 field,
  4: map<i32, TagProperty> properties,
}

// One placed piece of material.
struct Element {
  1: i32 id,
  2: SequenceId sequenceId,
  3: i32 position,
  4: string umId,
  5: i32 inBoundaryType,
  6: i32 outBoundaryType,
  7: i32 effectPosition,
  8: i32 stillMode,
  9: i32 transitionTimer,
  10: list<Tag> tags,
  11: Speed speed,
  12: i32 internalLoopId,
  13: i32 internalLoopRunNb,
}

// An element with its separate video and audio effects and field ranges.
struct AudioVideoElement {
  1: i32 videoEffectType,
  2: i32 audioEffectType,
  3: i32 videoEffectDuration,
  4: i32 audioEffectDuration,
  5: i64 videoFieldIn,
  6: i64 videoFieldOut,
  7: i64 audioFieldIn,
  8: i64 audioFieldOut,
  9: Element element,
}

struct AudioVideoTrack {
  1: optional list<AudioVideoElement> elements,
  2: optional i32 numberOfElements,
}

// Field id 8 is retired: it must stay unused.
struct Sequence {
  1: SequenceId id,
  2: string umId,
  3: Clips.AsciiOrUtf16String varId,
  4: Clips.AsciiOrUtf16String name,
  5: bool isTimeCodeRegen,
  6: string timeCodeRegenReference,
  7: i32 timeCodeRegenBase,
  9: i32 timeCodeRegenSource,
  10: i32 timeCodeRegenOutput,
  11: i32 timeCodeRegenType,
  12: i64 durationWithEffects,
  13: i64 durationWithoutEffects,
  14: i64 playRateNumerator,
  15: i64 playRateDenominator,
  16: bool isFixedDuration,
  17: i32 archiveStatus,
}

struct Playlist {
  1: AudioVideoTrack audioVideoTrack,
  2: string auxTrackClipUmId,
  3: Sequence sequence,
}

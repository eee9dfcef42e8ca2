// A recorded clip with its essences, and the trains of recorded material with their ranges.

namespace cpp Korvo.Plexis.Tessel.Serialization.Thrift.Data.Clips.Generated

// A text that is either 8-bit text or UTF-16 code units, carried as bytes without conversion.
struct AsciiOrUtf16String {
  1: string data,  // the text's bytes
  2: bool isUtf16,  // true when data holds UTF-16 code units
}

// One encoded rendition of a clip's media.
struct Essence {
  1: i32 type,
  2: i32 recordingStatus,
  3: i32 archiveStatus,
  4: i32 metadata,
  5: i32 blockSize,
  6: i32 videoCompressionType,
  7: i32 audioCompressionType,
  8: i32 videoCompressionInfo,
  9: i32 audioConfiguration,
  10: i32 videoCompressionRate,
  11: i32 audioCompressionRate,
  12: i32 horizontalFrameSize,
  13: i32 verticalFrameSize,
}

// One recorded clip. The optional fields are written only when set.
struct Clip {
  1: string umId,
  2: string sourceUmId,
  3: string fillAndKeyUmId,
  4: string materialId,
  5: AsciiOrUtf16String name,
  6: AsciiOrUtf16String varId,
  7: list<AsciiOrUtf16String> keywords,
  8: list<i16> userBits,
  9: bool is3D,
  10: bool isDual,
  11: bool isTwinRec,
  12: bool isLegacyTimecodeDrop,
  13: i32 trainStatus,
  14: optional i32 sourceEngine,
  15: optional i32 uhdDivisionMode,
  16: optional i32 hdrProfile,
  17: optional i32 alphaArchiveStatus,
  18: i32 archiveStatus,
  19: optional i32 fillAndKeyStatus,
  20: i32 userProtect,
  21: i32 camera,
  22: optional i32 afdAspectRatio,
  23: optional i32 codedFrameAspectRatio,
  24: i32 videoFormat,
  25: i32 videoStandard,
  26: i32 userTimecodeType,
  27: optional i32 primaryTimecode,
  28: optional i32 rating,
  29: optional i32 preferentialCamera,
  30: i64 inBoundField,
  31: i64 shortInBoundField,
  32: i64 shortOutBoundField,
  33: i64 outBoundField,
  34: i64 legacyTimecodeOffset,
  35: i32 kivIndex,
  36: i64 userLock,
  37: i64 thumbnailOffset,
  38: i64 sequence,
  39: i64 machineSerial,
  40: i32 nbAudioVideoChannels,
  41: i32 dolbyMonoSignal,
  42: optional string inBoundTodTimecode,
  43: optional string inBoundUserTimecode,
  44: optional string sourceInBoundTodTimecode,
  45: optional string sourceInBoundUserTimecode,
  46: optional i64 inBoundTimepoint,
  47: optional Essence intraEssence,
  48: optional Essence longGopEssence,
  49: optional Essence lowResEssence,
}

// One stretch of material a recorder has recorded into a train.
struct RecordingRange {
  1: optional i64 inTimepoint,  // time point where the recorded stretch begins
  2: optional i64 outTimepoint,  // time point where the recorded stretch ends
  3: optional string inTimecode,  // time code of the first field, as displayed
  4: optional string outTimecode,  // time code of the last field, as displayed
}

// A train: the continuous recording a recorder feeds, with the ranges recorded so far.
struct Train {
  1: optional Clip clip,  // the train's clip record
  2: optional list<RecordingRange> recordingRanges,  // recorded ranges, in the server's order
  3: optional bool isRecording,  // a recorder is feeding the train now
  4: optional bool isLoopRecording,  // the train is recorded in a loop, overwriting its oldest part
  5: optional string recorderName,  // name of the recorder that feeds the train
}

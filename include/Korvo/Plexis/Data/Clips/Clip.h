#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <Korvo/Plexis/Data/Clips/AsciiOrUtf16String.h>
#include <Korvo/Plexis/Data/Clips/Essence.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/TimePoints/TimeCode.h>

namespace Korvo::Plexis::Data::Clips {

/// One recorded clip: identifiers, names, status values, bounds, time codes and essences.
///
/// The identifier texts have a fixed width on the server and start blank-filled: a clip made here
/// and sent unchanged carries blanks, not an empty text. Members the wire leaves optional are
/// `std::optional`: unset means the sender did not say. The value sets of the status, format,
/// standard and mode numbers are the server's.
struct Clip {
    static constexpr std::size_t kUmIdWidth = 64;        ///< a unique material identifier, in hex
    static constexpr std::size_t kMaterialIdWidth = 32;  ///< a material number, in hex

    /// The time code every clip starts with: sample 0 at 50 frames per second, non-drop. Built
    /// once per process, on first use.
    static const TimePoints::TimeCode& DefaultTimecode();

    std::string umId = std::string(kUmIdWidth, ' ');
    std::string sourceUmId = std::string(kUmIdWidth, ' ');
    std::string fillAndKeyUmId = std::string(kUmIdWidth, ' ');
    std::string materialId = std::string(kMaterialIdWidth, ' ');
    AsciiOrUtf16String name;
    AsciiOrUtf16String varId;
    std::vector<AsciiOrUtf16String> keywords;
    std::vector<std::int16_t> userBits;
    bool is3D = false;
    bool isDual = false;
    bool isTwinRec = false;
    bool isLegacyTimecodeDrop = false;
    std::int32_t trainStatus = 0;
    std::optional<std::int32_t> sourceEngine;
    std::optional<std::int32_t> uhdDivisionMode;
    std::optional<std::int32_t> hdrProfile;
    std::optional<std::int32_t> alphaArchiveStatus;
    std::int32_t archiveStatus = 0;
    std::optional<std::int32_t> fillAndKeyStatus;
    std::int32_t userProtect = 0;
    std::int32_t camera = 0;
    std::optional<std::int32_t> afdAspectRatio;
    std::optional<std::int32_t> codedFrameAspectRatio;
    std::int32_t videoFormat = 0;
    std::int32_t videoStandard = 0;
    std::int32_t userTimecodeType = 0;
    std::optional<std::int32_t> primaryTimecode;
    std::optional<std::int32_t> rating;
    std::optional<std::int32_t> preferentialCamera;
    std::int64_t inBoundField = 0;
    std::int64_t shortInBoundField = 0;
    std::int64_t shortOutBoundField = 0;
    std::int64_t outBoundField = 0;
    std::int64_t legacyTimecodeOffset = 0;
    std::int32_t kivIndex = 0;
    std::int64_t userLock = 0;
    std::int64_t thumbnailOffset = 0;
    std::int64_t sequence = 0;
    std::int64_t machineSerial = 0;
    std::int32_t nbAudioVideoChannels = 0;
    std::int32_t dolbyMonoSignal = 0;
    std::optional<std::string> inBoundTodTimecode;
    std::optional<std::string> inBoundUserTimecode;
    std::optional<std::string> sourceInBoundTodTimecode;
    std::optional<std::string> sourceInBoundUserTimecode;
    std::optional<std::int64_t> inBoundTimepoint;
    std::optional<Essence> intraEssence;
    std::optional<Essence> longGopEssence;
    std::optional<Essence> lowResEssence;

    /// The clip's reference time code (rate, counting, start). Kept with the clip on this side
    /// only: the wire does not carry it, so a clip read from the server has the default.
    TimePoints::TimeCode timecode = DefaultTimecode();

    KORVO_FIELDS(Clip, umId, sourceUmId, fillAndKeyUmId, materialId, name, varId, keywords,
                 userBits, is3D, isDual, isTwinRec, isLegacyTimecodeDrop, trainStatus, sourceEngine,
                 uhdDivisionMode, hdrProfile, alphaArchiveStatus, archiveStatus, fillAndKeyStatus,
                 userProtect, camera, afdAspectRatio, codedFrameAspectRatio, videoFormat,
                 videoStandard, userTimecodeType, primaryTimecode, rating, preferentialCamera,
                 inBoundField, shortInBoundField, shortOutBoundField, outBoundField,
                 legacyTimecodeOffset, kivIndex, userLock, thumbnailOffset, sequence, machineSerial,
                 nbAudioVideoChannels, dolbyMonoSignal, inBoundTodTimecode, inBoundUserTimecode,
                 sourceInBoundTodTimecode, sourceInBoundUserTimecode, inBoundTimepoint,
                 intraEssence, longGopEssence, lowResEssence, KORVO_THIS_SIDE_ONLY(timecode))
};

}  // namespace Korvo::Plexis::Data::Clips

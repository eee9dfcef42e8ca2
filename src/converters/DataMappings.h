#pragma once

// The tables of the data records: clips and their parts, channel states, servers, trains, angles
// groups, sequences and playlists, multiviewer overrides and operation outcomes.

#include <Korvo/Plexis/Data/Channels/PlayerState.h>
#include <Korvo/Plexis/Data/Channels/RecorderState.h>
#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/Clips/Groups/AnglesGroup.h>
#include <Korvo/Plexis/Data/Clips/Train.h>
#include <Korvo/Plexis/Data/OperationStatus.h>
#include <Korvo/Plexis/Data/Sequences/Playlist.h>
#include <Korvo/Plexis/Data/Servers/ServerInfo.h>
#include <Korvo/Plexis/Multiviewer/PlayerDataOverrides.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/AnglesGroups_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Channels_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Clips_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Common_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Sequences_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Servers_types.h>

#include "converters/FieldMapping.h"
#include "converters/Leaves.h"

namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping {

namespace DomainClips = ::Korvo::Plexis::Data::Clips;
namespace DomainSequences = ::Korvo::Plexis::Data::Sequences;
namespace WireClips = ::Korvo::Plexis::Tessel::Serialization::Thrift::Data::Clips::Generated;
namespace WireSequences =
    ::Korvo::Plexis::Tessel::Serialization::Thrift::Data::Sequences::Generated;
namespace WireServers = ::Korvo::Plexis::Tessel::Serialization::Thrift::Data::Servers::Generated;
namespace WireGroups = ::Korvo::Plexis::Data::Clips::Groups::Generated;

// clang-format off

KORVO_MAPPING(DomainData::OperationStatus, WireData::OperationStatus)
    KORVO_PRESENT(code), KORVO_PRESENT(reason)
KORVO_END_MAPPING;

KORVO_MAPPING(::Korvo::Plexis::Multiviewer::PlayerDataOverrides, WireData::PlayerDataOverrides)
    KORVO_ALWAYS(playerGuid), KORVO_OPTIONAL(clipCreationIn), KORVO_OPTIONAL(clipCreationOut),
    KORVO_OPTIONAL(isFirstControlledMediaOutput), KORVO_OPTIONAL(controlMode),
    KORVO_OPTIONAL(programMode), KORVO_OPTIONAL(isPostRollEnabled), KORVO_OPTIONAL(message)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainClips::AsciiOrUtf16String, WireClips::AsciiOrUtf16String)
    KORVO_ALWAYS(data), KORVO_ALWAYS(isUtf16)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainClips::Essence, WireClips::Essence)
    KORVO_ALWAYS(type), KORVO_ALWAYS(recordingStatus), KORVO_ALWAYS(archiveStatus),
    KORVO_ALWAYS(metadata), KORVO_ALWAYS(blockSize), KORVO_ALWAYS(videoCompressionType),
    KORVO_ALWAYS(audioCompressionType), KORVO_ALWAYS(videoCompressionInfo),
    KORVO_ALWAYS(audioConfiguration), KORVO_ALWAYS(videoCompressionRate),
    KORVO_ALWAYS(audioCompressionRate), KORVO_ALWAYS(horizontalFrameSize),
    KORVO_ALWAYS(verticalFrameSize)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainClips::Clip, WireClips::Clip)
    KORVO_ALWAYS(umId), KORVO_ALWAYS(sourceUmId), KORVO_ALWAYS(fillAndKeyUmId),
    KORVO_ALWAYS(materialId), KORVO_ALWAYS(name), KORVO_ALWAYS(varId), KORVO_ALWAYS(keywords),
    KORVO_ALWAYS(userBits), KORVO_ALWAYS(is3D), KORVO_ALWAYS(isDual), KORVO_ALWAYS(isTwinRec),
    KORVO_ALWAYS(isLegacyTimecodeDrop), KORVO_ALWAYS(trainStatus), KORVO_OPTIONAL(sourceEngine),
    KORVO_OPTIONAL(uhdDivisionMode), KORVO_OPTIONAL(hdrProfile),
    KORVO_OPTIONAL(alphaArchiveStatus), KORVO_ALWAYS(archiveStatus),
    KORVO_OPTIONAL(fillAndKeyStatus), KORVO_ALWAYS(userProtect), KORVO_ALWAYS(camera),
    KORVO_OPTIONAL(afdAspectRatio), KORVO_OPTIONAL(codedFrameAspectRatio),
    KORVO_ALWAYS(videoFormat), KORVO_ALWAYS(videoStandard), KORVO_ALWAYS(userTimecodeType),
    KORVO_OPTIONAL(primaryTimecode), KORVO_OPTIONAL(rating), KORVO_OPTIONAL(preferentialCamera),
    KORVO_ALWAYS(inBoundField), KORVO_ALWAYS(shortInBoundField),
    KORVO_ALWAYS(shortOutBoundField), KORVO_ALWAYS(outBoundField),
    KORVO_ALWAYS(legacyTimecodeOffset), KORVO_ALWAYS(kivIndex), KORVO_ALWAYS(userLock),
    KORVO_ALWAYS(thumbnailOffset), KORVO_ALWAYS(sequence), KORVO_ALWAYS(machineSerial),
    KORVO_ALWAYS(nbAudioVideoChannels), KORVO_ALWAYS(dolbyMonoSignal),
    KORVO_OPTIONAL(inBoundTodTimecode), KORVO_OPTIONAL(inBoundUserTimecode),
    KORVO_OPTIONAL(sourceInBoundTodTimecode), KORVO_OPTIONAL(sourceInBoundUserTimecode),
    KORVO_OPTIONAL(inBoundTimepoint), KORVO_OPTIONAL(intraEssence),
    KORVO_OPTIONAL(longGopEssence), KORVO_OPTIONAL(lowResEssence)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainClips::RecordingRange, WireClips::RecordingRange)
    KORVO_PRESENT(inTimepoint), KORVO_PRESENT(outTimepoint), KORVO_PRESENT(inTimecode),
    KORVO_PRESENT(outTimecode)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainClips::Train, WireClips::Train)
    KORVO_PRESENT(clip), KORVO_PRESENT(recordingRanges), KORVO_PRESENT(isRecording),
    KORVO_PRESENT(isLoopRecording), KORVO_PRESENT(recorderName)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainClips::Groups::AnglesGroupItem, WireGroups::AnglesGroupItem)
    KORVO_ALWAYS(clipGuid), KORVO_ALWAYS(camera)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainClips::Groups::AnglesGroup, WireGroups::AnglesGroup)
    KORVO_ALWAYS(groupGuid), KORVO_ALWAYS(angles)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainData::Servers::ServerInfo, WireServers::ServerInfo)
    KORVO_PRESENT(serverId), KORVO_PRESENT(status), KORVO_PRESENT(name),
    KORVO_PRESENT(serverType), KORVO_PRESENT(hostName), KORVO_PRESENT(version),
    KORVO_PRESENT(channelCount), KORVO_PRESENT(channelNumbers), KORVO_PRESENT(isLocal)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainData::Channels::PlayerClipOnAir, WireChannels::PlayerClipOnAir)
    KORVO_PRESENT(clip), KORVO_PRESENT(position), KORVO_PRESENT(todTimecode),
    KORVO_PRESENT(userTimecode)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainData::Channels::PlayerInfoOnAir, WireChannels::PlayerInfoOnAir)
    KORVO_PRESENT(speedNumerator), KORVO_PRESENT(speedDenominator), KORVO_PRESENT(playMode),
    KORVO_PRESENT(loopMode), KORVO_PRESENT(elementIndex), KORVO_PRESENT(elementCount),
    KORVO_PRESENT(loopCount), KORVO_PRESENT(videoStandard), KORVO_PRESENT(controlMode),
    KORVO_PRESENT(timepoint), KORVO_PRESENT(position), KORVO_PRESENT(inPoint),
    KORVO_PRESENT(outPoint), KORVO_PRESENT(duration), KORVO_PRESENT(remaining),
    KORVO_PRESENT(sequencePosition), KORVO_PRESENT(sequenceDuration),
    KORVO_PRESENT(updateTimestamp)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainData::Channels::PlayerState, WireChannels::PlayerState)
    KORVO_PRESENT(timestamp), KORVO_PRESENT(channelNumber), KORVO_PRESENT(channelName),
    KORVO_PRESENT(serverId), KORVO_PRESENT(playMode), KORVO_PRESENT(infoOnAir),
    KORVO_PRESENT(currentClip), KORVO_PRESENT(nextClip), KORVO_PRESENT(cueTimepoint),
    KORVO_PRESENT(currentTimepoint), KORVO_PRESENT(liveTimepoint),
    KORVO_PRESENT(chainTimepoint), KORVO_PRESENT(loadedClipUmId),
    KORVO_PRESENT(loadedSequenceUmId), KORVO_PRESENT(liveRecorderName),
    KORVO_PRESENT(currentTimecode), KORVO_PRESENT(inTimecode), KORVO_PRESENT(outTimecode),
    KORVO_PRESENT(remainingTimecode), KORVO_PRESENT(durationTimecode),
    KORVO_PRESENT(loadedMaterialType), KORVO_PRESENT(inBoundary), KORVO_PRESENT(outBoundary)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainData::Channels::RecorderState, WireChannels::RecorderState)
    KORVO_PRESENT(timestamp), KORVO_PRESENT(channelNumber), KORVO_PRESENT(channelName),
    KORVO_PRESENT(serverId), KORVO_PRESENT(isRecording), KORVO_PRESENT(recordStartTimepoint),
    KORVO_PRESENT(currentTimepoint), KORVO_PRESENT(currentTimecode),
    KORVO_PRESENT(recordStartTimecode), KORVO_PRESENT(recordMode),
    KORVO_PRESENT(recordedFields), KORVO_PRESENT(remainingFields), KORVO_PRESENT(clip)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainSequences::Speed, WireSequences::Speed)
    KORVO_ALWAYS(numerator), KORVO_ALWAYS(denominator)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainSequences::SequenceId, WireSequences::SequenceId)
    KORVO_ALWAYS(location), KORVO_ALWAYS(serverId)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainSequences::TagProperty, WireSequences::TagProperty)
    KORVO_ALWAYS(dataType), KORVO_ALWAYS(value)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainSequences::Tag, WireSequences::Tag)
    KORVO_ALWAYS(id), KORVO_ALWAYS(commandType), KORVO_ALWAYS(field), KORVO_ALWAYS(properties)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainSequences::Element, WireSequences::Element)
    KORVO_ALWAYS(id), KORVO_ALWAYS(sequenceId), KORVO_ALWAYS(position), KORVO_ALWAYS(umId),
    KORVO_ALWAYS(inBoundaryType), KORVO_ALWAYS(outBoundaryType), KORVO_ALWAYS(effectPosition),
    KORVO_ALWAYS(stillMode), KORVO_ALWAYS(transitionTimer), KORVO_ALWAYS(tags),
    KORVO_ALWAYS(speed), KORVO_ALWAYS(internalLoopId), KORVO_ALWAYS(internalLoopRunNb)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainSequences::AudioVideoElement, WireSequences::AudioVideoElement)
    KORVO_ALWAYS(videoEffectType), KORVO_ALWAYS(audioEffectType),
    KORVO_ALWAYS(videoEffectDuration), KORVO_ALWAYS(audioEffectDuration),
    KORVO_ALWAYS(videoFieldIn), KORVO_ALWAYS(videoFieldOut), KORVO_ALWAYS(audioFieldIn),
    KORVO_ALWAYS(audioFieldOut), KORVO_ALWAYS(element)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainSequences::AudioVideoTrack, WireSequences::AudioVideoTrack)
    KORVO_OPTIONAL(elements), KORVO_OPTIONAL(numberOfElements)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainSequences::Sequence, WireSequences::Sequence)
    KORVO_ALWAYS(id), KORVO_ALWAYS(umId), KORVO_ALWAYS(varId), KORVO_ALWAYS(name),
    KORVO_ALWAYS(isTimeCodeRegen), KORVO_ALWAYS(timeCodeRegenReference),
    KORVO_ALWAYS(timeCodeRegenBase), KORVO_ALWAYS(timeCodeRegenSource),
    KORVO_ALWAYS(timeCodeRegenOutput), KORVO_ALWAYS(timeCodeRegenType),
    KORVO_ALWAYS(durationWithEffects), KORVO_ALWAYS(durationWithoutEffects),
    KORVO_ALWAYS(playRateNumerator), KORVO_ALWAYS(playRateDenominator),
    KORVO_ALWAYS(isFixedDuration), KORVO_ALWAYS(archiveStatus)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainSequences::Playlist, WireSequences::Playlist)
    KORVO_ALWAYS(audioVideoTrack), KORVO_ALWAYS(auxTrackClipUmId), KORVO_ALWAYS(sequence)
KORVO_END_MAPPING;

// clang-format on

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping

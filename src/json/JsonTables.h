#pragma once

// The field lists of every class the JSON form covers: data values, command parameters, replies
// and notification arguments. Each list names the members of the class's `Fields()` in the same
// order (checked at compile time), so a member added to a class without a JSON name fails the
// build. Command parameters mark the fields a command cannot do without as required.

#include <Korvo/Plexis/Data/Channels/LoadBoundary.h>
#include <Korvo/Plexis/Data/Channels/PlayerState.h>
#include <Korvo/Plexis/Data/Channels/RecorderState.h>
#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/Clips/Groups/AnglesGroup.h>
#include <Korvo/Plexis/Data/Clips/Train.h>
#include <Korvo/Plexis/Data/OperationStatus.h>
#include <Korvo/Plexis/Data/Sequences/Playlist.h>
#include <Korvo/Plexis/Data/Servers/ServerInfo.h>
#include <Korvo/Plexis/Multiviewer/PlayerDataOverrides.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

#include "json/JsonCodec.h"

namespace Korvo::Plexis::Tessel::Json::Detail {

namespace Channels = Data::Channels;
namespace Clips = Data::Clips;
namespace Sequences = Data::Sequences;
namespace Commands = HighLevelOperations::Commands;
namespace Events = Notification;

// clang-format off

KORVO_JSON_FIELDS(Data::OperationStatus)
    KORVO_JSON_FIELD(code), KORVO_JSON_FIELD(reason)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Channels::LoadBoundary)
    KORVO_JSON_FIELD(type), KORVO_JSON_FIELD(absoluteTimepoint),
    KORVO_JSON_FIELD(relativeFieldCount)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Multiviewer::PlayerDataOverrides)
    KORVO_JSON_FIELD(playerGuid), KORVO_JSON_FIELD(clipCreationIn),
    KORVO_JSON_FIELD(clipCreationOut), KORVO_JSON_FIELD(isFirstControlledMediaOutput),
    KORVO_JSON_FIELD(controlMode), KORVO_JSON_FIELD(programMode),
    KORVO_JSON_FIELD(isPostRollEnabled), KORVO_JSON_FIELD(message)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Clips::Essence)
    KORVO_JSON_FIELD(type), KORVO_JSON_FIELD(recordingStatus), KORVO_JSON_FIELD(archiveStatus),
    KORVO_JSON_FIELD(metadata), KORVO_JSON_FIELD(blockSize),
    KORVO_JSON_FIELD(videoCompressionType), KORVO_JSON_FIELD(audioCompressionType),
    KORVO_JSON_FIELD(videoCompressionInfo), KORVO_JSON_FIELD(audioConfiguration),
    KORVO_JSON_FIELD(videoCompressionRate), KORVO_JSON_FIELD(audioCompressionRate),
    KORVO_JSON_FIELD(horizontalFrameSize), KORVO_JSON_FIELD(verticalFrameSize)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Clips::Clip)
    KORVO_JSON_FIELD(umId), KORVO_JSON_FIELD(sourceUmId), KORVO_JSON_FIELD(fillAndKeyUmId),
    KORVO_JSON_FIELD(materialId), KORVO_JSON_FIELD(name), KORVO_JSON_FIELD(varId),
    KORVO_JSON_FIELD(keywords), KORVO_JSON_FIELD(userBits), KORVO_JSON_FIELD(is3D),
    KORVO_JSON_FIELD(isDual), KORVO_JSON_FIELD(isTwinRec), KORVO_JSON_FIELD(isLegacyTimecodeDrop),
    KORVO_JSON_FIELD(trainStatus), KORVO_JSON_FIELD(sourceEngine),
    KORVO_JSON_FIELD(uhdDivisionMode), KORVO_JSON_FIELD(hdrProfile),
    KORVO_JSON_FIELD(alphaArchiveStatus), KORVO_JSON_FIELD(archiveStatus),
    KORVO_JSON_FIELD(fillAndKeyStatus), KORVO_JSON_FIELD(userProtect), KORVO_JSON_FIELD(camera),
    KORVO_JSON_FIELD(afdAspectRatio), KORVO_JSON_FIELD(codedFrameAspectRatio),
    KORVO_JSON_FIELD(videoFormat), KORVO_JSON_FIELD(videoStandard),
    KORVO_JSON_FIELD(userTimecodeType), KORVO_JSON_FIELD(primaryTimecode),
    KORVO_JSON_FIELD(rating), KORVO_JSON_FIELD(preferentialCamera),
    KORVO_JSON_FIELD(inBoundField), KORVO_JSON_FIELD(shortInBoundField),
    KORVO_JSON_FIELD(shortOutBoundField), KORVO_JSON_FIELD(outBoundField),
    KORVO_JSON_FIELD(legacyTimecodeOffset), KORVO_JSON_FIELD(kivIndex),
    KORVO_JSON_FIELD(userLock), KORVO_JSON_FIELD(thumbnailOffset), KORVO_JSON_FIELD(sequence),
    KORVO_JSON_FIELD(machineSerial), KORVO_JSON_FIELD(nbAudioVideoChannels),
    KORVO_JSON_FIELD(dolbyMonoSignal), KORVO_JSON_FIELD(inBoundTodTimecode),
    KORVO_JSON_FIELD(inBoundUserTimecode), KORVO_JSON_FIELD(sourceInBoundTodTimecode),
    KORVO_JSON_FIELD(sourceInBoundUserTimecode), KORVO_JSON_FIELD(inBoundTimepoint),
    KORVO_JSON_FIELD(intraEssence), KORVO_JSON_FIELD(longGopEssence),
    KORVO_JSON_FIELD(lowResEssence), KORVO_JSON_FIELD(timecode)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Clips::RecordingRange)
    KORVO_JSON_FIELD(inTimepoint), KORVO_JSON_FIELD(outTimepoint), KORVO_JSON_FIELD(inTimecode),
    KORVO_JSON_FIELD(outTimecode)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Clips::Train)
    KORVO_JSON_FIELD(clip), KORVO_JSON_FIELD(recordingRanges), KORVO_JSON_FIELD(isRecording),
    KORVO_JSON_FIELD(isLoopRecording), KORVO_JSON_FIELD(recorderName)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Clips::Groups::AnglesGroupItem)
    KORVO_JSON_FIELD(clipGuid), KORVO_JSON_FIELD(camera)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Clips::Groups::AnglesGroup)
    KORVO_JSON_FIELD(groupGuid), KORVO_JSON_FIELD(angles)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Data::Servers::ServerInfo)
    KORVO_JSON_FIELD(serverId), KORVO_JSON_FIELD(status), KORVO_JSON_FIELD(name),
    KORVO_JSON_FIELD(serverType), KORVO_JSON_FIELD(hostName), KORVO_JSON_FIELD(version),
    KORVO_JSON_FIELD(channelCount), KORVO_JSON_FIELD(channelNumbers), KORVO_JSON_FIELD(isLocal)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Channels::PlayerClipOnAir)
    KORVO_JSON_FIELD(clip), KORVO_JSON_FIELD(position), KORVO_JSON_FIELD(todTimecode),
    KORVO_JSON_FIELD(userTimecode)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Channels::PlayerInfoOnAir)
    KORVO_JSON_FIELD(speedNumerator), KORVO_JSON_FIELD(speedDenominator),
    KORVO_JSON_FIELD(playMode), KORVO_JSON_FIELD(loopMode), KORVO_JSON_FIELD(elementIndex),
    KORVO_JSON_FIELD(elementCount), KORVO_JSON_FIELD(loopCount), KORVO_JSON_FIELD(videoStandard),
    KORVO_JSON_FIELD(controlMode), KORVO_JSON_FIELD(timepoint), KORVO_JSON_FIELD(position),
    KORVO_JSON_FIELD(inPoint), KORVO_JSON_FIELD(outPoint), KORVO_JSON_FIELD(duration),
    KORVO_JSON_FIELD(remaining), KORVO_JSON_FIELD(sequencePosition),
    KORVO_JSON_FIELD(sequenceDuration), KORVO_JSON_FIELD(updateTimestamp)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Channels::PlayerState)
    KORVO_JSON_FIELD(timestamp), KORVO_JSON_FIELD(channelNumber), KORVO_JSON_FIELD(channelName),
    KORVO_JSON_FIELD(serverId), KORVO_JSON_FIELD(playMode), KORVO_JSON_FIELD(infoOnAir),
    KORVO_JSON_FIELD(currentClip), KORVO_JSON_FIELD(nextClip), KORVO_JSON_FIELD(cueTimepoint),
    KORVO_JSON_FIELD(currentTimepoint), KORVO_JSON_FIELD(liveTimepoint),
    KORVO_JSON_FIELD(chainTimepoint), KORVO_JSON_FIELD(loadedClipUmId),
    KORVO_JSON_FIELD(loadedSequenceUmId), KORVO_JSON_FIELD(liveRecorderName),
    KORVO_JSON_FIELD(currentTimecode), KORVO_JSON_FIELD(inTimecode),
    KORVO_JSON_FIELD(outTimecode), KORVO_JSON_FIELD(remainingTimecode),
    KORVO_JSON_FIELD(durationTimecode), KORVO_JSON_FIELD(loadedMaterialType),
    KORVO_JSON_FIELD(inBoundary), KORVO_JSON_FIELD(outBoundary)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Channels::RecorderState)
    KORVO_JSON_FIELD(timestamp), KORVO_JSON_FIELD(channelNumber), KORVO_JSON_FIELD(channelName),
    KORVO_JSON_FIELD(serverId), KORVO_JSON_FIELD(isRecording),
    KORVO_JSON_FIELD(recordStartTimepoint), KORVO_JSON_FIELD(currentTimepoint),
    KORVO_JSON_FIELD(currentTimecode), KORVO_JSON_FIELD(recordStartTimecode),
    KORVO_JSON_FIELD(recordMode), KORVO_JSON_FIELD(recordedFields),
    KORVO_JSON_FIELD(remainingFields), KORVO_JSON_FIELD(clip)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Sequences::Speed)
    KORVO_JSON_FIELD(numerator), KORVO_JSON_FIELD(denominator)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Sequences::SequenceId)
    KORVO_JSON_FIELD(location), KORVO_JSON_FIELD(serverId)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Sequences::TagProperty)
    KORVO_JSON_FIELD(dataType), KORVO_JSON_FIELD(value)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Sequences::Tag)
    KORVO_JSON_FIELD(id), KORVO_JSON_FIELD(commandType), KORVO_JSON_FIELD(field),
    KORVO_JSON_FIELD(properties)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Sequences::Element)
    KORVO_JSON_FIELD(id), KORVO_JSON_FIELD(sequenceId), KORVO_JSON_FIELD(position),
    KORVO_JSON_FIELD(umId), KORVO_JSON_FIELD(inBoundaryType), KORVO_JSON_FIELD(outBoundaryType),
    KORVO_JSON_FIELD(effectPosition), KORVO_JSON_FIELD(stillMode),
    KORVO_JSON_FIELD(transitionTimer), KORVO_JSON_FIELD(tags), KORVO_JSON_FIELD(speed),
    KORVO_JSON_FIELD(internalLoopId), KORVO_JSON_FIELD(internalLoopRunNb)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Sequences::AudioVideoElement)
    KORVO_JSON_FIELD(videoEffectType), KORVO_JSON_FIELD(audioEffectType),
    KORVO_JSON_FIELD(videoEffectDuration), KORVO_JSON_FIELD(audioEffectDuration),
    KORVO_JSON_FIELD(videoFieldIn), KORVO_JSON_FIELD(videoFieldOut),
    KORVO_JSON_FIELD(audioFieldIn), KORVO_JSON_FIELD(audioFieldOut), KORVO_JSON_FIELD(element)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Sequences::AudioVideoTrack)
    KORVO_JSON_FIELD(elements), KORVO_JSON_FIELD(numberOfElements)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Sequences::Sequence)
    KORVO_JSON_FIELD(id), KORVO_JSON_FIELD(umId), KORVO_JSON_FIELD(varId), KORVO_JSON_FIELD(name),
    KORVO_JSON_FIELD(isTimeCodeRegen), KORVO_JSON_FIELD(timeCodeRegenReference),
    KORVO_JSON_FIELD(timeCodeRegenBase), KORVO_JSON_FIELD(timeCodeRegenSource),
    KORVO_JSON_FIELD(timeCodeRegenOutput), KORVO_JSON_FIELD(timeCodeRegenType),
    KORVO_JSON_FIELD(durationWithEffects), KORVO_JSON_FIELD(durationWithoutEffects),
    KORVO_JSON_FIELD(playRateNumerator), KORVO_JSON_FIELD(playRateDenominator),
    KORVO_JSON_FIELD(isFixedDuration), KORVO_JSON_FIELD(archiveStatus)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Sequences::Playlist)
    KORVO_JSON_FIELD(audioVideoTrack), KORVO_JSON_FIELD(auxTrackClipUmId),
    KORVO_JSON_FIELD(sequence)
KORVO_JSON_END;

// Command parameters. `commandGuid` may always be left out: a fresh one is generated.

KORVO_JSON_FIELDS(Commands::PlayCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(players), KORVO_JSON_FIELD(speedNum),
    KORVO_JSON_FIELD(speedDen)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::LiveCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(players)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::ChainCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(players), KORVO_JSON_FIELD(timepoint),
    KORVO_JSON_FIELD(inBoundary), KORVO_JSON_FIELD(outBoundary)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::DialCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(players), KORVO_JSON_FIELD(velocity)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::StepCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(players), KORVO_JSON_FIELD(fieldCount)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::SyncCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(sourcePlayer),
    KORVO_JSON_REQUIRED(players), KORVO_JSON_FIELD(inBoundary), KORVO_JSON_FIELD(outBoundary)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::LoadClipCommandParam)
    KORVO_JSON_REQUIRED(clip), KORVO_JSON_FIELD(timepoint), KORVO_JSON_FIELD(inBoundary),
    KORVO_JSON_FIELD(outBoundary)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::LoadClipsCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(playersParameters)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::LoadSequenceCommandParam)
    KORVO_JSON_REQUIRED(sequence), KORVO_JSON_FIELD(durationFromBeginning),
    KORVO_JSON_FIELD(isForDiffusion)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::LoadSequencesCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(playersParameters)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::SetLoadBoundariesCommandParam)
    KORVO_JSON_FIELD(inBoundary), KORVO_JSON_FIELD(outBoundary)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::SetLoadBoundariesCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(playersParameters)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::GoIdleCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(players), KORVO_JSON_FIELD(setBlackScreen)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::StartCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(recorders)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::StopCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(recorders)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::GetChannelsCommandParams)
    KORVO_JSON_FIELD(commandGuid)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::GetMultiviewerDataCommandParams)
    KORVO_JSON_FIELD(commandGuid)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::SetMultiviewerDataCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(playersDataOverrides)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::GetClipsCommandParams)
    KORVO_JSON_FIELD(commandGuid)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::GetTrainsCommandParams)
    KORVO_JSON_FIELD(commandGuid)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::GetServersCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_FIELD(serverRange)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::GetPlaylistsCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_FIELD(elementMode), KORVO_JSON_FIELD(idFilter)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::DeleteClipsCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(clips)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::CreateClipParams)
    KORVO_JSON_REQUIRED(sourceId), KORVO_JSON_REQUIRED(clip), KORVO_JSON_FIELD(setTimecodes)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::CreateClipsCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(clips)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::UpdateClipParams)
    KORVO_JSON_REQUIRED(oldClip), KORVO_JSON_REQUIRED(newClip)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::UpdateClipsCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(clips)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::PingCommandParams)
    KORVO_JSON_FIELD(commandGuid)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::GetAnglesGroupsCommandParams)
    KORVO_JSON_FIELD(commandGuid)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::DeleteAnglesGroupCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(groupGuid)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::UpdateAnglesGroupCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(groupGuid), KORVO_JSON_FIELD(primaryAngle),
    KORVO_JSON_FIELD(secondaryAngle)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::CreateAnglesGroupCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_FIELD(groupKivIndex),
    KORVO_JSON_REQUIRED(creationParams)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::CreatePlaylistsCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(playlists)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::DeletePlaylistsCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(playlists)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::UpdatePlaylistParams)
    KORVO_JSON_REQUIRED(oldPlaylist), KORVO_JSON_REQUIRED(newPlaylist)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::UpdatePlaylistsCommandParams)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_REQUIRED(params)
KORVO_JSON_END;

// Replies (ChannelCommandReply, with its fixed array of results, has a codec of its own).

KORVO_JSON_FIELDS(Commands::SuccessReply)
    KORVO_JSON_FIELD(commandGuid)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::FailureReply)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_FIELD(message)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::UnknownCommandReply)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_FIELD(message)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::ChannelResult)
    KORVO_JSON_FIELD(channelGuid), KORVO_JSON_FIELD(status)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::GetChannelsCommandReply)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_FIELD(playerStates),
    KORVO_JSON_FIELD(recorderStates)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::GetMultiviewerDataCommandReply)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_FIELD(playerDataOverrides),
    KORVO_JSON_FIELD(status)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::ClipResult)
    KORVO_JSON_FIELD(status), KORVO_JSON_FIELD(clip)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::ClipCommandReply)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_FIELD(results)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::PlaylistResult)
    KORVO_JSON_FIELD(status), KORVO_JSON_FIELD(playlist)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::PlaylistCommandReply)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_FIELD(results)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::AnglesGroupCommandReply)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_FIELD(groupGuid), KORVO_JSON_FIELD(status),
    KORVO_JSON_FIELD(clipCommandReply)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::GetServersCommandReply)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_FIELD(servers)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::GetClipsCommandReply)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_FIELD(marker), KORVO_JSON_FIELD(clips)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::GetTrainsCommandReply)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_FIELD(marker), KORVO_JSON_FIELD(trains)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::GetPlaylistsCommandReply)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_FIELD(marker), KORVO_JSON_FIELD(playlists)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Commands::GetAnglesGroupsCommandReply)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_FIELD(marker), KORVO_JSON_FIELD(anglesGroups)
KORVO_JSON_END;

// Notification arguments: a class's list starts with its base's.

KORVO_JSON_FIELDS(Events::CommandEventArgs)
    KORVO_JSON_FIELD(commandGuid), KORVO_JSON_FIELD(serverId), KORVO_JSON_FIELD(originType),
    KORVO_JSON_FIELD(channelNumber), KORVO_JSON_FIELD(sequenceNumber), KORVO_JSON_FIELD(result),
    KORVO_JSON_FIELD(timestamp), KORVO_JSON_FIELD(userName)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Events::ClipCommandEventArgs)
    KORVO_JSON_BASE(Events::CommandEventArgs)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Events::ClipCreationEventArgs)
    KORVO_JSON_BASE(Events::ClipCommandEventArgs), KORVO_JSON_FIELD(clip),
    KORVO_JSON_FIELD(sourceClip), KORVO_JSON_FIELD(inTimecode), KORVO_JSON_FIELD(outTimecode),
    KORVO_JSON_FIELD(revision)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Events::ClipUpdateEventArgs)
    KORVO_JSON_BASE(Events::ClipCommandEventArgs), KORVO_JSON_FIELD(oldClip),
    KORVO_JSON_FIELD(newClip), KORVO_JSON_FIELD(succeeded), KORVO_JSON_FIELD(revision)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Events::ClipDeletionEventArgs)
    KORVO_JSON_BASE(Events::ClipCommandEventArgs), KORVO_JSON_FIELD(clip),
    KORVO_JSON_FIELD(revision)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Events::ClipMoveEventArgs)
    KORVO_JSON_BASE(Events::ClipCommandEventArgs), KORVO_JSON_FIELD(oldClip),
    KORVO_JSON_FIELD(newClip), KORVO_JSON_FIELD(revision)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Events::MassClipUpdateEventArgs)
    KORVO_JSON_BASE(Events::ClipCommandEventArgs), KORVO_JSON_FIELD(clipCount),
    KORVO_JSON_FIELD(revision)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Events::MassClipDeletionEventArgs)
    KORVO_JSON_BASE(Events::ClipCommandEventArgs), KORVO_JSON_FIELD(clipCount),
    KORVO_JSON_FIELD(revision)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Events::AnglesGroupCreationEventArgs)
    KORVO_JSON_BASE(Events::ClipCommandEventArgs), KORVO_JSON_FIELD(anglesGroup),
    KORVO_JSON_FIELD(revision)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Events::AnglesGroupUpdateEventArgs)
    KORVO_JSON_BASE(Events::ClipCommandEventArgs), KORVO_JSON_FIELD(anglesGroup),
    KORVO_JSON_FIELD(revision)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Events::AnglesGroupDeletionEventArgs)
    KORVO_JSON_BASE(Events::ClipCommandEventArgs), KORVO_JSON_FIELD(groupGuid),
    KORVO_JSON_FIELD(revision)
KORVO_JSON_END;

// The "...Finished" classes add nothing to the base they share with their "Started" sibling.
#define KORVO_JSON_SAME_AS_BASE(Type, Base) \
    KORVO_JSON_FIELDS(Type) KORVO_JSON_BASE(Base) KORVO_JSON_END
KORVO_JSON_SAME_AS_BASE(Events::ClipCreationFinishedEventArgs, Events::ClipCreationEventArgs);
KORVO_JSON_SAME_AS_BASE(Events::ClipUpdateFinishedEventArgs, Events::ClipUpdateEventArgs);
KORVO_JSON_SAME_AS_BASE(Events::ClipDeletionFinishedEventArgs, Events::ClipDeletionEventArgs);
KORVO_JSON_SAME_AS_BASE(Events::ClipMoveFinishedEventArgs, Events::ClipMoveEventArgs);
KORVO_JSON_SAME_AS_BASE(Events::AnglesGroupCreationFinishedEventArgs,
                        Events::AnglesGroupCreationEventArgs);
KORVO_JSON_SAME_AS_BASE(Events::AnglesGroupUpdateFinishedEventArgs,
                        Events::AnglesGroupUpdateEventArgs);
KORVO_JSON_SAME_AS_BASE(Events::AnglesGroupDeletionFinishedEventArgs,
                        Events::AnglesGroupDeletionEventArgs);

KORVO_JSON_FIELDS(Events::StatusEventArgs)
KORVO_JSON_END;

KORVO_JSON_SAME_AS_BASE(Events::ClipStatusEventArgs, Events::StatusEventArgs);

KORVO_JSON_FIELDS(Events::RecordingRangesChangedEventArgs)
    KORVO_JSON_BASE(Events::ClipStatusEventArgs), KORVO_JSON_FIELD(channelGuid),
    KORVO_JSON_FIELD(ranges), KORVO_JSON_FIELD(isRecording), KORVO_JSON_FIELD(isLoopRecording)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Events::ChannelStatusEventArgs)
    KORVO_JSON_BASE(Events::StatusEventArgs), KORVO_JSON_FIELD(channelGuid),
    KORVO_JSON_FIELD(serverId), KORVO_JSON_FIELD(timestamp)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Events::PlayerStateChangedEventArgs)
    KORVO_JSON_BASE(Events::ChannelStatusEventArgs), KORVO_JSON_FIELD(state)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Events::RecorderStateChangedEventArgs)
    KORVO_JSON_BASE(Events::ChannelStatusEventArgs), KORVO_JSON_FIELD(state)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Events::ServerStatusEventArgs)
    KORVO_JSON_BASE(Events::StatusEventArgs), KORVO_JSON_FIELD(serverId)
KORVO_JSON_END;

KORVO_JSON_FIELDS(Events::ServerAddedEventArgs)
    KORVO_JSON_BASE(Events::ServerStatusEventArgs), KORVO_JSON_FIELD(server)
KORVO_JSON_END;

KORVO_JSON_SAME_AS_BASE(Events::ServerRemovedEventArgs, Events::ServerStatusEventArgs);
KORVO_JSON_SAME_AS_BASE(Events::DisconnectedFromNetworkEventArgs, Events::ServerStatusEventArgs);
#undef KORVO_JSON_SAME_AS_BASE

// clang-format on

}  // namespace Korvo::Plexis::Tessel::Json::Detail

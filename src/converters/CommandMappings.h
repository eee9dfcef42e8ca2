#pragma once

// The tables of the 30 commands and the parameter records nested in them.

#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ChainCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CreateAnglesGroupCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CreateClipParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CreateClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CreatePlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/DeleteAnglesGroupCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/DeleteClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/DeletePlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/DialCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetAnglesGroupsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetChannelsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetMultiviewerDataCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetServersCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetTrainsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GoIdleCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LiveCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadClipCommandParam.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadSequenceCommandParam.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadSequencesCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PingCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PlayCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SetLoadBoundariesCommandParam.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SetLoadBoundariesCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SetMultiviewerDataCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StartCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StepCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StopCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SyncCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdateAnglesGroupCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdateClipParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdateClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdatePlaylistParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdatePlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Commands_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/DataCommands_types.h>

#include "converters/DataMappings.h"
#include "converters/FieldMapping.h"
#include "converters/Leaves.h"

namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping {

namespace DomainCommands = ::Korvo::Plexis::Tessel::HighLevelOperations::Commands;
namespace WireCommands = ::Korvo::Plexis::Tessel::Serialization::Thrift::Commands::Generated;

// clang-format off

KORVO_MAPPING(DomainCommands::PlayCommandParams, WireCommands::PlayCommandParams)
    KORVO_ALWAYS_AS(commandGuid, commandId), KORVO_ALWAYS(players), KORVO_ALWAYS(speedNum),
    KORVO_ALWAYS(speedDen)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::LiveCommandParams, WireCommands::LiveCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(players)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::ChainCommandParams, WireCommands::ChainCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(players), KORVO_ALWAYS(timepoint),
    KORVO_ALWAYS(inBoundary), KORVO_ALWAYS(outBoundary)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::DialCommandParams, WireCommands::DialCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(players), KORVO_ALWAYS(velocity)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::StepCommandParams, WireCommands::StepCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(players), KORVO_ALWAYS(fieldCount)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::SyncCommandParams, WireCommands::SyncCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(sourcePlayer), KORVO_ALWAYS(players),
    KORVO_ALWAYS(inBoundary), KORVO_ALWAYS(outBoundary)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::LoadClipCommandParam, WireCommands::LoadClipCommandParam)
    KORVO_ALWAYS(clip), KORVO_ALWAYS(timepoint), KORVO_ALWAYS(inBoundary), KORVO_ALWAYS(outBoundary)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::LoadClipsCommandParams, WireCommands::LoadClipsCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(playersParameters)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::LoadSequenceCommandParam, WireCommands::LoadSequenceCommandParam)
    KORVO_ALWAYS(sequence), KORVO_ALWAYS(durationFromBeginning), KORVO_ALWAYS(isForDiffusion)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::LoadSequencesCommandParams, WireCommands::LoadSequencesCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(playersParameters)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::SetLoadBoundariesCommandParam, WireCommands::SetLoadBoundariesCommandParam)
    KORVO_ALWAYS(inBoundary), KORVO_ALWAYS(outBoundary)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::SetLoadBoundariesCommandParams, WireCommands::SetLoadBoundariesCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(playersParameters)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::GoIdleCommandParams, WireCommands::GoIdleCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(players), KORVO_ALWAYS(setBlackScreen)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::StartCommandParams, WireCommands::StartRecordingCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(recorders)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::StopCommandParams, WireCommands::StopRecordingCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(recorders)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::GetChannelsCommandParams, WireCommands::GetChannelsCommandParams)
    KORVO_ALWAYS(commandGuid)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::GetMultiviewerDataCommandParams, WireCommands::GetMultiviewerDataCommandParams)
    KORVO_ALWAYS(commandGuid)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::SetMultiviewerDataCommandParams, WireCommands::SetMultiviewerDataCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(playersDataOverrides)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::GetClipsCommandParams, WireCommands::GetClipsCommandParams)
    KORVO_ALWAYS(commandGuid)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::GetTrainsCommandParams, WireCommands::GetTrainsCommandParams)
    KORVO_ALWAYS(commandGuid)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::GetServersCommandParams, WireCommands::GetServersCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(serverRange)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::GetPlaylistsCommandParams, WireCommands::GetPlaylistsCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(elementMode), KORVO_OPTIONAL(idFilter)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::DeleteClipsCommandParams, WireCommands::DeleteClipsCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(clips)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::CreateClipParams, WireCommands::CreateClipParams)
    KORVO_ALWAYS(sourceId), KORVO_ALWAYS(clip), KORVO_ALWAYS(setTimecodes)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::CreateClipsCommandParams, WireCommands::CreateClipsCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(clips)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::UpdateClipParams, WireCommands::UpdateClipParams)
    KORVO_ALWAYS(oldClip), KORVO_ALWAYS(newClip)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::UpdateClipsCommandParams, WireCommands::UpdateClipsCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(clips)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::PingCommandParams, WireCommands::PingCommandParams)
    KORVO_ALWAYS(commandGuid)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::GetAnglesGroupsCommandParams, WireCommands::GetAnglesGroupsCommandParams)
    KORVO_ALWAYS(commandGuid)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::DeleteAnglesGroupCommandParams, WireCommands::DeleteAnglesGroupCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(groupGuid)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::UpdateAnglesGroupCommandParams, WireCommands::UpdateAnglesGroupCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(groupGuid), KORVO_OPTIONAL(primaryAngle),
    KORVO_OPTIONAL(secondaryAngle)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::CreateAnglesGroupCommandParams, WireCommands::CreateAnglesGroupCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(groupKivIndex), KORVO_ALWAYS(creationParams)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::CreatePlaylistsCommandParams, WireCommands::CreatePlaylistsCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(playlists)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::DeletePlaylistsCommandParams, WireCommands::DeletePlaylistsCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(playlists)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::UpdatePlaylistParams, WireCommands::UpdatePlaylistParams)
    KORVO_ALWAYS(oldPlaylist), KORVO_ALWAYS(newPlaylist)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::UpdatePlaylistsCommandParams, WireCommands::UpdatePlaylistsCommandParams)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(params)
KORVO_END_MAPPING;

// clang-format on

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping

#pragma once

// The tables of the replies and their result records. ChannelCommandReply, whose results sit in
// a fixed array, has a leaf conversion of its own (ChannelReplyLeaf.h).

#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/AnglesGroupCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ChannelCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ClipCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ClipResult.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/FailureReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetAnglesGroupsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetChannelsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetMultiviewerDataCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetServersCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetTrainsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PlaylistCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PlaylistResult.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SuccessReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UnknownCommandReply.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Replies_types.h>

#include "converters/DataMappings.h"
#include "converters/FieldMapping.h"
#include "converters/Leaves.h"

namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping {

namespace DomainCommands = ::Korvo::Plexis::Tessel::HighLevelOperations::Commands;
namespace WireCommands = ::Korvo::Plexis::Tessel::Serialization::Thrift::Commands::Generated;

// clang-format off

KORVO_MAPPING(DomainCommands::SuccessReply, WireCommands::SuccessReply)
    KORVO_PRESENT(commandGuid)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::FailureReply, WireCommands::FailureReply)
    KORVO_PRESENT(commandGuid), KORVO_PRESENT(message)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::UnknownCommandReply, WireCommands::UnknownCommandReply)
    KORVO_PRESENT(message)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::GetChannelsCommandReply, WireCommands::GetChannelsCommandReply)
    KORVO_PRESENT(commandGuid), KORVO_PRESENT(playerStates), KORVO_PRESENT(recorderStates)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::GetMultiviewerDataCommandReply, WireCommands::GetMultiviewerDataCommandReply)
    KORVO_ALWAYS(commandGuid), KORVO_ALWAYS(status), KORVO_ALWAYS(playerDataOverrides)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::ClipResult, WireCommands::ClipResultsItem)
    KORVO_PRESENT(status), KORVO_PRESENT(clip)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::ClipCommandReply, WireCommands::ClipCommandReply)
    KORVO_PRESENT(commandGuid), KORVO_PRESENT(results)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::PlaylistResult, WireCommands::PlaylistResultsItem)
    KORVO_PRESENT(status), KORVO_PRESENT(playlist)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::PlaylistCommandReply, WireCommands::PlaylistCommandReply)
    KORVO_PRESENT(commandGuid), KORVO_PRESENT(results)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::AnglesGroupCommandReply, WireCommands::AnglesGroupCommandReply)
    KORVO_PRESENT(commandGuid), KORVO_PRESENT(groupGuid), KORVO_PRESENT(status),
    KORVO_PRESENT(clipCommandReply)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::GetServersCommandReply, WireCommands::GetServersCommandReply)
    KORVO_PRESENT(commandGuid), KORVO_PRESENT(servers)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::GetClipsCommandReply, WireCommands::GetClipsCommandReply)
    KORVO_PRESENT(commandGuid), KORVO_PRESENT(marker), KORVO_PRESENT(clips)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::GetTrainsCommandReply, WireCommands::GetTrainsCommandReply)
    KORVO_PRESENT(commandGuid), KORVO_PRESENT(marker), KORVO_PRESENT(trains)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::GetPlaylistsCommandReply, WireCommands::GetPlaylistsCommandReply)
    KORVO_PRESENT(commandGuid), KORVO_PRESENT(marker), KORVO_PRESENT(playlists)
KORVO_END_MAPPING;

KORVO_MAPPING(DomainCommands::GetAnglesGroupsCommandReply, WireCommands::GetAnglesGroupsCommandReply)
    KORVO_PRESENT(commandGuid), KORVO_PRESENT(marker), KORVO_PRESENT(anglesGroups)
KORVO_END_MAPPING;

// clang-format on

/// The channel reply keeps its results in a fixed array of `ChannelCommandReply::kCapacity`
/// entries: decoding more results fails, and an undefined channel in a result is left out of the
/// encoding (the wire field is optional).
template <>
struct Leaf<DomainCommands::ChannelCommandReply, WireCommands::ChannelCommandReply> {
    static ConversionResult ToWire(const DomainCommands::ChannelCommandReply& source,
                                   WireCommands::ChannelCommandReply& target);
    static ConversionResult FromWire(const WireCommands::ChannelCommandReply& source,
                                     DomainCommands::ChannelCommandReply& target);
};

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping

#pragma once

// The converters of the 30 commands and of the replies, in both directions: the client encodes
// commands and decodes replies; a server (such as the simulator) does the reverse.

#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/AnglesGroupCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ChainCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ChannelCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ClipCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CreateAnglesGroupCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CreateClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CreatePlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/DeleteAnglesGroupCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/DeleteClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/DeletePlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/DialCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/FailureReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetAnglesGroupsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetAnglesGroupsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetChannelsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetChannelsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetMultiviewerDataCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetMultiviewerDataCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetServersCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetServersCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetTrainsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetTrainsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GoIdleCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LiveCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadSequencesCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PingCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PlayCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PlaylistCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SetLoadBoundariesCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SetMultiviewerDataCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StartCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StepCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StopCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SuccessReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SyncCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UnknownCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdateAnglesGroupCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdateClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdatePlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Commands_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/DataCommands_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Replies_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/RecordConverters.h>

// clang-format off
/// Rows: the domain parameters class and the wire record of each command.
#define KORVO_TESSEL_COMMAND_RECORDS(X) \
    X(PlayCommandParams, PlayCommandParams) \
    X(LiveCommandParams, LiveCommandParams) \
    X(ChainCommandParams, ChainCommandParams) \
    X(DialCommandParams, DialCommandParams) \
    X(StepCommandParams, StepCommandParams) \
    X(SyncCommandParams, SyncCommandParams) \
    X(LoadClipsCommandParams, LoadClipsCommandParams) \
    X(LoadSequencesCommandParams, LoadSequencesCommandParams) \
    X(SetLoadBoundariesCommandParams, SetLoadBoundariesCommandParams) \
    X(GoIdleCommandParams, GoIdleCommandParams) \
    X(StartCommandParams, StartRecordingCommandParams) \
    X(StopCommandParams, StopRecordingCommandParams) \
    X(GetChannelsCommandParams, GetChannelsCommandParams) \
    X(GetMultiviewerDataCommandParams, GetMultiviewerDataCommandParams) \
    X(SetMultiviewerDataCommandParams, SetMultiviewerDataCommandParams) \
    X(GetClipsCommandParams, GetClipsCommandParams) \
    X(GetTrainsCommandParams, GetTrainsCommandParams) \
    X(GetServersCommandParams, GetServersCommandParams) \
    X(GetPlaylistsCommandParams, GetPlaylistsCommandParams) \
    X(DeleteClipsCommandParams, DeleteClipsCommandParams) \
    X(CreateClipsCommandParams, CreateClipsCommandParams) \
    X(UpdateClipsCommandParams, UpdateClipsCommandParams) \
    X(PingCommandParams, PingCommandParams) \
    X(GetAnglesGroupsCommandParams, GetAnglesGroupsCommandParams) \
    X(DeleteAnglesGroupCommandParams, DeleteAnglesGroupCommandParams) \
    X(UpdateAnglesGroupCommandParams, UpdateAnglesGroupCommandParams) \
    X(CreateAnglesGroupCommandParams, CreateAnglesGroupCommandParams) \
    X(CreatePlaylistsCommandParams, CreatePlaylistsCommandParams) \
    X(DeletePlaylistsCommandParams, DeletePlaylistsCommandParams) \
    X(UpdatePlaylistsCommandParams, UpdatePlaylistsCommandParams)

/// Rows: the domain reply class and the wire record of each reply (same names).
#define KORVO_TESSEL_REPLY_RECORDS(X) \
    X(SuccessReply, SuccessReply) \
    X(FailureReply, FailureReply) \
    X(UnknownCommandReply, UnknownCommandReply) \
    X(ChannelCommandReply, ChannelCommandReply) \
    X(GetChannelsCommandReply, GetChannelsCommandReply) \
    X(GetMultiviewerDataCommandReply, GetMultiviewerDataCommandReply) \
    X(ClipCommandReply, ClipCommandReply) \
    X(PlaylistCommandReply, PlaylistCommandReply) \
    X(AnglesGroupCommandReply, AnglesGroupCommandReply) \
    X(GetServersCommandReply, GetServersCommandReply) \
    X(GetClipsCommandReply, GetClipsCommandReply) \
    X(GetTrainsCommandReply, GetTrainsCommandReply) \
    X(GetPlaylistsCommandReply, GetPlaylistsCommandReply) \
    X(GetAnglesGroupsCommandReply, GetAnglesGroupsCommandReply)
// clang-format on

namespace Korvo::Plexis::Tessel::Serialization::Thrift::Commands {

// <Wire>ToThriftConverter encodes a command; ThriftTo<Wire>Converter decodes one.
#define KORVO_TESSEL_COMMAND_CONVERTERS(Domain, Wire)                              \
    using Wire##ToThriftConverter =                                                \
        ToThriftConverter<HighLevelOperations::Commands::Domain, Generated::Wire>; \
    using ThriftTo##Wire##Converter =                                              \
        FromThriftConverter<Generated::Wire, HighLevelOperations::Commands::Domain>;
KORVO_TESSEL_COMMAND_RECORDS(KORVO_TESSEL_COMMAND_CONVERTERS)
#undef KORVO_TESSEL_COMMAND_CONVERTERS

// ThriftTo<Reply>Converter decodes a reply; <Reply>ToThriftConverter encodes one.
#define KORVO_TESSEL_REPLY_CONVERTERS(Domain, Wire)                                  \
    using ThriftTo##Domain##Converter =                                              \
        FromThriftConverter<Generated::Wire, HighLevelOperations::Commands::Domain>; \
    using Domain##ToThriftConverter =                                                \
        ToThriftConverter<HighLevelOperations::Commands::Domain, Generated::Wire>;
KORVO_TESSEL_REPLY_RECORDS(KORVO_TESSEL_REPLY_CONVERTERS)
#undef KORVO_TESSEL_REPLY_CONVERTERS

/// The get-channels reply decoder keeps the name it has always had.
using GetChannelsCommandReplyFromThriftConverter = ThriftToGetChannelsCommandReplyConverter;

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift::Commands

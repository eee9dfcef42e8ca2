#pragma once

// The protocol's commands, replies and notifications, one row each, and the headers of the classes
// they name. These rows are the only list of them: the builders, the notification dispatch, the
// converters, the JSON form, the simulator, the command-line tool and the fuzzers all expand them.
// `CommandTypes.h` and `NotificationTypes.h` (in Client/) turn them into traits keyed by type.
//
// A user passes a macro `X` taking the row's columns; a user that needs only the first columns
// may declare `X(First, Second, ...)`, so that a column added later breaks nothing.

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
#include <Korvo/Plexis/Notification/AnglesGroupCreationFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/AnglesGroupDeletionFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/AnglesGroupUpdateFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ChannelStatusEvent.h>
#include <Korvo/Plexis/Notification/ClipCommandEvent.h>
#include <Korvo/Plexis/Notification/ClipCreationEventArgs.h>
#include <Korvo/Plexis/Notification/ClipCreationFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipDeletionFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipMoveEventArgs.h>
#include <Korvo/Plexis/Notification/ClipMoveFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipStatusEvent.h>
#include <Korvo/Plexis/Notification/ClipUpdateFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/DisconnectedFromNetworkEventArgs.h>
#include <Korvo/Plexis/Notification/MassClipDeletionEventArgs.h>
#include <Korvo/Plexis/Notification/MassClipUpdateEventArgs.h>
#include <Korvo/Plexis/Notification/PlayerStateChangedEventArgs.h>
#include <Korvo/Plexis/Notification/RecorderStateChangedEventArgs.h>
#include <Korvo/Plexis/Notification/RecordingRangesChangedEventArgs.h>
#include <Korvo/Plexis/Notification/ServerAddedEventArgs.h>
#include <Korvo/Plexis/Notification/ServerRemovedEventArgs.h>
#include <Korvo/Plexis/Notification/ServerStatusEvent.h>

// clang-format off
/// Commands, channel commands first, each family in its payload builder's order of comparison:
/// the parameters class, its wire record (the command's name is the record's name without
/// "Params"), the family, the reply it answers with when it runs, and whether it only reads (a
/// command that only reads is safe to send again after an unknown outcome).
#define KORVO_TESSEL_COMMANDS(X) \
    X(PlayCommandParams, PlayCommandParams, Channel, ChannelCommandReply, false) \
    X(LiveCommandParams, LiveCommandParams, Channel, ChannelCommandReply, false) \
    X(ChainCommandParams, ChainCommandParams, Channel, ChannelCommandReply, false) \
    X(DialCommandParams, DialCommandParams, Channel, ChannelCommandReply, false) \
    X(StepCommandParams, StepCommandParams, Channel, ChannelCommandReply, false) \
    X(SyncCommandParams, SyncCommandParams, Channel, ChannelCommandReply, false) \
    X(LoadClipsCommandParams, LoadClipsCommandParams, Channel, ChannelCommandReply, false) \
    X(LoadSequencesCommandParams, LoadSequencesCommandParams, Channel, ChannelCommandReply, false) \
    X(SetLoadBoundariesCommandParams, SetLoadBoundariesCommandParams, Channel, ChannelCommandReply, false) \
    X(GoIdleCommandParams, GoIdleCommandParams, Channel, ChannelCommandReply, false) \
    X(StartCommandParams, StartRecordingCommandParams, Channel, ChannelCommandReply, false) \
    X(StopCommandParams, StopRecordingCommandParams, Channel, ChannelCommandReply, false) \
    X(GetChannelsCommandParams, GetChannelsCommandParams, Channel, GetChannelsCommandReply, true) \
    X(GetMultiviewerDataCommandParams, GetMultiviewerDataCommandParams, Channel, GetMultiviewerDataCommandReply, true) \
    X(SetMultiviewerDataCommandParams, SetMultiviewerDataCommandParams, Channel, ChannelCommandReply, false) \
    X(GetClipsCommandParams, GetClipsCommandParams, Data, GetClipsCommandReply, true) \
    X(GetTrainsCommandParams, GetTrainsCommandParams, Data, GetTrainsCommandReply, true) \
    X(GetServersCommandParams, GetServersCommandParams, Data, GetServersCommandReply, true) \
    X(GetPlaylistsCommandParams, GetPlaylistsCommandParams, Data, GetPlaylistsCommandReply, true) \
    X(DeleteClipsCommandParams, DeleteClipsCommandParams, Data, ClipCommandReply, false) \
    X(CreateClipsCommandParams, CreateClipsCommandParams, Data, ClipCommandReply, false) \
    X(UpdateClipsCommandParams, UpdateClipsCommandParams, Data, ClipCommandReply, false) \
    X(PingCommandParams, PingCommandParams, Data, SuccessReply, true) \
    X(GetAnglesGroupsCommandParams, GetAnglesGroupsCommandParams, Data, GetAnglesGroupsCommandReply, true) \
    X(DeleteAnglesGroupCommandParams, DeleteAnglesGroupCommandParams, Data, AnglesGroupCommandReply, false) \
    X(UpdateAnglesGroupCommandParams, UpdateAnglesGroupCommandParams, Data, AnglesGroupCommandReply, false) \
    X(CreateAnglesGroupCommandParams, CreateAnglesGroupCommandParams, Data, AnglesGroupCommandReply, false) \
    X(CreatePlaylistsCommandParams, CreatePlaylistsCommandParams, Data, PlaylistCommandReply, false) \
    X(DeletePlaylistsCommandParams, DeletePlaylistsCommandParams, Data, PlaylistCommandReply, false) \
    X(UpdatePlaylistsCommandParams, UpdatePlaylistsCommandParams, Data, PlaylistCommandReply, false)

/// Replies: the class (its wire record has the same name), the reply type name announcing it,
/// whether it may come in "[part]" messages, and the families that receive it. Within a family,
/// the rows keep the order in which that family's reply builder compares names.
#define KORVO_TESSEL_REPLIES(X) \
    X(SuccessReply, "SuccessReply", false, Both) \
    X(FailureReply, "FailureReply", false, Both) \
    X(UnknownCommandReply, "UnknownCommand", false, Both) \
    X(ChannelCommandReply, "ChannelCommandReply", true, Channel) \
    X(GetChannelsCommandReply, "GetChannelsCommandReply", false, Channel) \
    X(GetMultiviewerDataCommandReply, "GetMultiviewerDataCommandReply", false, Channel) \
    X(ClipCommandReply, "ClipCommandReply", true, Data) \
    X(PlaylistCommandReply, "PlaylistCommandReply", true, Data) \
    X(GetClipsCommandReply, "GetClipsCommandReply", true, Data) \
    X(GetTrainsCommandReply, "GetTrainsCommandReply", false, Data) \
    X(GetPlaylistsCommandReply, "GetPlaylistsCommandReply", false, Data) \
    X(GetServersCommandReply, "GetServersCommandReply", false, Data) \
    X(GetAnglesGroupsCommandReply, "GetAnglesGroupsCommandReply", true, Data) \
    X(AnglesGroupCommandReply, "AnglesGroupCommandReply", true, Data)

/// Notifications: the type name (also its enumerator and, with "EventArgs", its wire record), its
/// family (the enumeration `<Family>Event`, the base class `<Family>EventArgs`), the argument
/// class it is delivered as, and its own callback list in `NotificationHandlers`.
#define KORVO_TESSEL_NOTIFICATIONS(X) \
    X(ClipCreationStarted, ClipCommand, ClipCreationEventArgs, clipCreationStartedHandlers) \
    X(ClipCreationFinished, ClipCommand, ClipCreationFinishedEventArgs, clipCreationFinishedHandlers) \
    X(ClipUpdateFinished, ClipCommand, ClipUpdateFinishedEventArgs, clipUpdateFinishedHandlers) \
    X(ClipDeletionFinished, ClipCommand, ClipDeletionFinishedEventArgs, clipDeletionFinishedHandlers) \
    X(ClipMoveStarted, ClipCommand, ClipMoveEventArgs, clipMoveStartedHandlers) \
    X(ClipMoveFinished, ClipCommand, ClipMoveFinishedEventArgs, clipMoveFinishedHandlers) \
    X(MassClipUpdateFinished, ClipCommand, MassClipUpdateEventArgs, massClipUpdateFinishedHandlers) \
    X(MassClipDeletionFinished, ClipCommand, MassClipDeletionEventArgs, massClipDeletionFinishedHandlers) \
    X(AnglesGroupCreationFinished, ClipCommand, AnglesGroupCreationFinishedEventArgs, anglesGroupCreationFinishedHandlers) \
    X(AnglesGroupUpdateFinished, ClipCommand, AnglesGroupUpdateFinishedEventArgs, anglesGroupUpdateFinishedHandlers) \
    X(AnglesGroupDeletionFinished, ClipCommand, AnglesGroupDeletionFinishedEventArgs, anglesGroupDeletionFinishedHandlers) \
    X(RecordingRangesChanged, ClipStatus, RecordingRangesChangedEventArgs, recordingRangesChangedHandlers) \
    X(RecorderStateChanged, ChannelStatus, RecorderStateChangedEventArgs, recorderStateChangedHandlers) \
    X(PlayerStateChanged, ChannelStatus, PlayerStateChangedEventArgs, playerStateChangedHandlers) \
    X(ServerAdded, ServerStatus, ServerAddedEventArgs, serverAddedHandlers) \
    X(ServerRemoved, ServerStatus, ServerRemovedEventArgs, serverRemovedHandlers) \
    X(DisconnectedFromNetwork, ServerStatus, DisconnectedFromNetworkEventArgs, disconnectedFromNetworkHandlers)
// clang-format on

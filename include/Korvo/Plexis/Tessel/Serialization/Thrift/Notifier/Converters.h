#pragma once

// The converters of the 17 notifications, in both directions: the client decodes them, a server
// (such as the simulator) encodes them.

#include <Korvo/Plexis/Notification/AnglesGroupCreationFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/AnglesGroupDeletionFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/AnglesGroupUpdateFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipCreationEventArgs.h>
#include <Korvo/Plexis/Notification/ClipCreationFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipDeletionFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipMoveEventArgs.h>
#include <Korvo/Plexis/Notification/ClipMoveFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipUpdateFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/DisconnectedFromNetworkEventArgs.h>
#include <Korvo/Plexis/Notification/MassClipDeletionEventArgs.h>
#include <Korvo/Plexis/Notification/MassClipUpdateEventArgs.h>
#include <Korvo/Plexis/Notification/PlayerStateChangedEventArgs.h>
#include <Korvo/Plexis/Notification/RecorderStateChangedEventArgs.h>
#include <Korvo/Plexis/Notification/RecordingRangesChangedEventArgs.h>
#include <Korvo/Plexis/Notification/ServerAddedEventArgs.h>
#include <Korvo/Plexis/Notification/ServerRemovedEventArgs.h>
#include <Korvo/Plexis/Notification/ChannelStatusEvent.h>
#include <Korvo/Plexis/Notification/ClipCommandEvent.h>
#include <Korvo/Plexis/Notification/ClipStatusEvent.h>
#include <Korvo/Plexis/Notification/ServerStatusEvent.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Notifications_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/RecordConverters.h>

// clang-format off
/// Rows: the notification type name (also its enumerator and, with "EventArgs", its wire record),
/// its family and the argument class it is delivered as, in the order of the callback lists.
#define KORVO_TESSEL_NOTIFICATIONS(X) \
    X(ClipCreationStarted, ClipCommand, ClipCreationEventArgs) \
    X(ClipCreationFinished, ClipCommand, ClipCreationFinishedEventArgs) \
    X(ClipUpdateFinished, ClipCommand, ClipUpdateFinishedEventArgs) \
    X(ClipDeletionFinished, ClipCommand, ClipDeletionFinishedEventArgs) \
    X(ClipMoveStarted, ClipCommand, ClipMoveEventArgs) \
    X(ClipMoveFinished, ClipCommand, ClipMoveFinishedEventArgs) \
    X(MassClipUpdateFinished, ClipCommand, MassClipUpdateEventArgs) \
    X(MassClipDeletionFinished, ClipCommand, MassClipDeletionEventArgs) \
    X(AnglesGroupCreationFinished, ClipCommand, AnglesGroupCreationFinishedEventArgs) \
    X(AnglesGroupUpdateFinished, ClipCommand, AnglesGroupUpdateFinishedEventArgs) \
    X(AnglesGroupDeletionFinished, ClipCommand, AnglesGroupDeletionFinishedEventArgs) \
    X(RecordingRangesChanged, ClipStatus, RecordingRangesChangedEventArgs) \
    X(RecorderStateChanged, ChannelStatus, RecorderStateChangedEventArgs) \
    X(PlayerStateChanged, ChannelStatus, PlayerStateChangedEventArgs) \
    X(ServerAdded, ServerStatus, ServerAddedEventArgs) \
    X(ServerRemoved, ServerStatus, ServerRemovedEventArgs) \
    X(DisconnectedFromNetwork, ServerStatus, DisconnectedFromNetworkEventArgs)
// clang-format on

namespace Korvo::Plexis::Tessel::Serialization::Thrift::Notifier {

// ThriftTo<Name>EventArgsConverter decodes a notification; <Name>EventArgsToThriftConverter encodes one.
#define KORVO_TESSEL_NOTIFICATION_CONVERTERS(Name, Family, Args)                               \
    using ThriftTo##Name##EventArgsConverter =                                                 \
        FromThriftConverter<Generated::Name##EventArgs, Notification::Args>;                    \
    using Name##EventArgsToThriftConverter =                                                   \
        ToThriftConverter<Notification::Args, Generated::Name##EventArgs>;
KORVO_TESSEL_NOTIFICATIONS(KORVO_TESSEL_NOTIFICATION_CONVERTERS)
#undef KORVO_TESSEL_NOTIFICATION_CONVERTERS

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift::Notifier

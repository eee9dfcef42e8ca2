#pragma once

#include <functional>
#include <vector>

#include <Korvo/Plexis/Notification/AnglesGroupCreationFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/AnglesGroupDeletionFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/AnglesGroupUpdateFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ChannelStatusEvent.h>
#include <Korvo/Plexis/Notification/ChannelStatusEventArgs.h>
#include <Korvo/Plexis/Notification/ClipCommandEvent.h>
#include <Korvo/Plexis/Notification/ClipCommandEventArgs.h>
#include <Korvo/Plexis/Notification/ClipCreationEventArgs.h>
#include <Korvo/Plexis/Notification/ClipCreationFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipDeletionFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipMoveEventArgs.h>
#include <Korvo/Plexis/Notification/ClipMoveFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipStatusEvent.h>
#include <Korvo/Plexis/Notification/ClipStatusEventArgs.h>
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
#include <Korvo/Plexis/Notification/ServerStatusEventArgs.h>

namespace Korvo::Plexis::Tessel::Client {

/// The callback lists a notification is delivered to: for each notification, every callback of
/// its type's own list, then every callback of its family's list (with the type's enumerator), in
/// list order. `NotificationClient` is one; plain lists, no locking of their own.
struct NotificationHandlers {
    template <class Args>
    using Handlers = std::vector<std::function<void(const Args&)>>;
    template <class Family, class Args>
    using FamilyHandlers = std::vector<std::function<void(typename Family::Type, const Args&)>>;

    /// Every clip and angles-group notification, with its enumerator.
    FamilyHandlers<Notification::ClipCommandEvent, Notification::ClipCommandEventArgs>
        clipCommandHandlers;
    /// Every clip status notification.
    FamilyHandlers<Notification::ClipStatusEvent, Notification::ClipStatusEventArgs>
        clipStatusHandlers;
    /// Every player and recorder state notification.
    FamilyHandlers<Notification::ChannelStatusEvent, Notification::ChannelStatusEventArgs>
        channelStatusHandlers;
    /// Every server notification.
    FamilyHandlers<Notification::ServerStatusEvent, Notification::ServerStatusEventArgs>
        serverStatusHandlers;

    // One list per notification type, called before the family's list.
    Handlers<Notification::ClipCreationEventArgs> clipCreationStartedHandlers;
    Handlers<Notification::ClipCreationFinishedEventArgs> clipCreationFinishedHandlers;
    Handlers<Notification::ClipUpdateFinishedEventArgs> clipUpdateFinishedHandlers;
    Handlers<Notification::ClipDeletionFinishedEventArgs> clipDeletionFinishedHandlers;
    Handlers<Notification::ClipMoveEventArgs> clipMoveStartedHandlers;
    Handlers<Notification::ClipMoveFinishedEventArgs> clipMoveFinishedHandlers;
    Handlers<Notification::MassClipUpdateEventArgs> massClipUpdateFinishedHandlers;
    Handlers<Notification::MassClipDeletionEventArgs> massClipDeletionFinishedHandlers;
    Handlers<Notification::RecordingRangesChangedEventArgs> recordingRangesChangedHandlers;
    Handlers<Notification::RecorderStateChangedEventArgs> recorderStateChangedHandlers;
    Handlers<Notification::PlayerStateChangedEventArgs> playerStateChangedHandlers;
    Handlers<Notification::AnglesGroupCreationFinishedEventArgs>
        anglesGroupCreationFinishedHandlers;
    Handlers<Notification::AnglesGroupDeletionFinishedEventArgs>
        anglesGroupDeletionFinishedHandlers;
    Handlers<Notification::AnglesGroupUpdateFinishedEventArgs> anglesGroupUpdateFinishedHandlers;
    Handlers<Notification::ServerAddedEventArgs> serverAddedHandlers;
    Handlers<Notification::ServerRemovedEventArgs> serverRemovedHandlers;
    Handlers<Notification::DisconnectedFromNetworkEventArgs> disconnectedFromNetworkHandlers;
};

}  // namespace Korvo::Plexis::Tessel::Client

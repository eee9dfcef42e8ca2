#pragma once

#include <functional>
#include <vector>

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

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

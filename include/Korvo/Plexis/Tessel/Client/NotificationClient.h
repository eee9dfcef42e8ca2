#pragma once

#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <Korvo/Common/Messaging/Client/Subscription.h>
#include <Korvo/Common/Messaging/EndPoint.h>
#include <Korvo/Common/Messaging/Message.h>
#include <Korvo/Common/Messaging/TransportOptions.h>
#include <Korvo/Plexis/Tessel/Logging/ILogger.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

namespace Korvo::Plexis::Tessel::Client {

/// Receives the server's notifications and hands each one, decoded into its argument class, to
/// the callbacks the application put in the lists below.
///
/// The constructor subscribes and starts one thread that runs for the client's life. Fill the
/// lists right after construction, before the notifications of interest arrive, or hold
/// `LockHandlers()` while changing them once notifications may be flowing. For each notification
/// the thread calls, in order, every callback of the type's own list, then every callback of its
/// family's list (with the type's enumerator), one notification at a time, in the order received; a
/// slow callback delays every later one. Meanwhile at most `TransportOptions::receiveHighWaterMark`
/// notifications wait; what arrives beyond that is dropped, logged and counted
/// (`GetSubscription().GetDroppedCount()`). A notification that cannot be decoded, or whose callback
/// throws, is logged (logger "NotificationClient", level 50) and skipped; the next one is handled
/// as usual. An unknown type name is logged and dropped.
class NotificationClient {
public:
    template <class Args>
    using Handlers = std::vector<std::function<void(const Args&)>>;
    template <class Family, class Args>
    using FamilyHandlers = std::vector<std::function<void(typename Family::Type, const Args&)>>;

    /// Subscribes to `topics` (empty: everything) on every endpoint and starts the receiving
    /// thread. Throws what the subscription throws (`TransportException`, `std::invalid_argument`
    /// for no endpoint); no thread is started then.
    NotificationClient(const std::vector<Common::Messaging::EndPoint>& endPoints,
                       const std::vector<std::string>& topics,
                       const Common::Messaging::TransportOptions& options = {});

    /// Shuts the subscription down, waits for the receiving thread to end (a callback that is
    /// running finishes first), then releases the lists. Must not be called from a callback.
    ~NotificationClient();

    NotificationClient(const NotificationClient&) = delete;
    NotificationClient& operator=(const NotificationClient&) = delete;

    /// The lock under which the receiving thread calls the callbacks of one notification. Hold it
    /// while changing a list once notifications may arrive; then the change is seen whole by the
    /// next notification. Must not be called from a callback (the thread already holds it).
    std::unique_lock<std::mutex> LockHandlers() {
        return std::unique_lock<std::mutex>(handlersMutex);
    }

    /// The subscription, for its connection states and handler. It lives as long as the client.
    Common::Messaging::Client::Subscription& GetSubscription() { return *subscription; }

private:
    std::unique_ptr<Common::Messaging::Client::Subscription> subscription;
    std::future<void> worker;

public:
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

private:
    void Run();
    void DispatchClipCommand(Notification::ClipCommandEvent::Type type,
                             const Common::Messaging::Message& message);
    void DispatchClipStatus(Notification::ClipStatusEvent::Type type,
                            const Common::Messaging::Message& message);
    void DispatchChannelStatus(Notification::ChannelStatusEvent::Type type,
                               const Common::Messaging::Message& message);
    void DispatchServerStatus(Notification::ServerStatusEvent::Type type,
                              const Common::Messaging::Message& message);

    std::shared_ptr<Logging::ILogger> logger;
    std::mutex handlersMutex;
};

}  // namespace Korvo::Plexis::Tessel::Client

#pragma once

#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <Korvo/Common/Messaging/Client/Subscription.h>
#include <Korvo/Common/Messaging/EndPoint.h>
#include <Korvo/Common/Messaging/Message.h>
#include <Korvo/Common/Messaging/TransportOptions.h>
#include <Korvo/Plexis/Tessel/Client/NotificationHandlers.h>

namespace Korvo::Plexis::Tessel::Client {

/// Receives the server's notifications and hands each one, decoded into its argument class, to
/// the callbacks the application put in its lists (`NotificationHandlers`).
///
/// The constructor subscribes and starts one thread that runs for the client's life. Fill the
/// lists right after construction, before the notifications of interest arrive, or hold
/// `LockHandlers()` while changing them once notifications may be flowing. For each notification
/// the thread calls, in order, every callback of the type's own list, then every callback of its
/// family's list (with the type's enumerator), one notification at a time, in the order received; a
/// slow callback delays every later one. Meanwhile at most `TransportOptions::notificationQueueBytes`
/// of notifications wait; what arrives beyond that is dropped, logged and counted
/// (`GetSubscription().GetDroppedCount()`). A notification that cannot be decoded, or whose callback
/// throws, is logged (logger "NotificationClient", level 50) and skipped; the next one is handled
/// as usual. An unknown type name is logged and dropped. Repeats of these lines are limited to a
/// few a second, with a count of those left out. A failure to receive is logged likewise and
/// retried after a wait that grows to 1 s while it lasts; the thread ends only when the
/// subscription is shut down.
class NotificationClient : public NotificationHandlers {
public:
    /// Subscribes to `topics` (empty: everything) on every endpoint and starts the receiving
    /// thread. Throws what the subscription throws (`TransportException`, `std::invalid_argument`
    /// for no endpoint); no thread is started then.
    NotificationClient(const std::vector<Common::Messaging::EndPoint>& endPoints,
                       const std::vector<std::string>& topics,
                       const Common::Messaging::TransportOptions& options = {});

    /// Shuts the subscription down, waits for the receiving thread to end (a callback that is
    /// running finishes first), then releases the lists. A callback may destroy the client it is
    /// called by: then the destructor returns at once, no further callback is called (not even
    /// the rest of that notification's), and the thread ends by itself once that callback has
    /// returned; what the callback captured stays valid until it returns.
    ~NotificationClient();

    NotificationClient(const NotificationClient&) = delete;
    NotificationClient& operator=(const NotificationClient&) = delete;

    /// The lock under which the receiving thread calls the callbacks of one notification. Hold it
    /// while changing a list once notifications may arrive; then the change is seen whole by the
    /// next notification. Must not be called from a callback (the thread already holds it).
    std::unique_lock<std::mutex> LockHandlers();

    /// The subscription, for its connection states and handler. It lives as long as the client.
    Common::Messaging::Client::Subscription& GetSubscription();

private:
    struct Loop;  // what the receiving thread uses; it outlives a client destroyed by a callback

    std::shared_ptr<Loop> loop;
    std::future<void> worker;

    void Run();
};

}  // namespace Korvo::Plexis::Tessel::Client

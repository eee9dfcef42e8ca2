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
#include <Korvo/Plexis/Tessel/Logging/ILogger.h>

namespace Korvo::Plexis::Tessel::Client {

/// Receives the server's notifications and hands each one, decoded into its argument class, to
/// the callbacks the application put in its lists (`NotificationHandlers`).
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
class NotificationClient : public NotificationHandlers {
public:
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

    void Run();

    std::shared_ptr<Logging::ILogger> logger;
    std::mutex handlersMutex;
};

}  // namespace Korvo::Plexis::Tessel::Client

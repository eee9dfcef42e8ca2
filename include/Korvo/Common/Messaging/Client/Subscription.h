#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <Korvo/Common/Messaging/ConnectionState.h>
#include <Korvo/Common/Messaging/EndPoint.h>
#include <Korvo/Common/Messaging/Message.h>
#include <Korvo/Common/Messaging/TransportOptions.h>

namespace Korvo::Common::Messaging::Client {

/// Receives the notifications that one or more servers publish: one ZeroMQ SUB socket per
/// endpoint, each subscribed to the same topics. A notification is one message of three frames,
/// [topic][header][payload]; the server filters on the topic by prefix (docs/protocol.md).
///
/// Threads: `Receive` from one thread at a time; everything else from any thread. The subscription
/// runs two threads of its own: one watches the links and calls the handler, the other takes each
/// notification off the sockets as it arrives and queues it for `Receive`. The destructor must
/// not run while another thread is inside the subscription, nor on the handler.
///
/// Memory stays bounded in bytes when the application falls behind: the notifications waiting
/// for `Receive` take at most `TransportOptions::notificationQueueBytes`. What arrives while the
/// queue is full is dropped, counted (`GetDroppedCount`) and logged (logger "Messaging", level 50:
/// once when dropping starts, once with the count when the application has emptied the queue;
/// both at most a few times a second).
///
/// Failures do not end the subscription: a link that cannot be read or re-created is retried by
/// itself after a back-off (up to 0.5 s) while the other endpoints go on, and a failure of the
/// receiving thread as a whole (memory running out, a failed poll) is retried likewise. Each
/// failure is logged at a limited rate and reported once by `Receive`.
class Subscription {
public:
    /// One received notification.
    class Event {
    public:
        Event(std::unique_ptr<Message> message, std::string topic, std::size_t source);

        /// The notification: its header is the notification type name.
        const Message& Payload() const { return *message; }

        /// The topic frame it was published under, for example "ChannelStatus/replay-1".
        const std::string& Topic() const { return topic; }

        /// Index, in the constructor's list, of the endpoint it came from.
        std::size_t Source() const { return source; }

    private:
        std::unique_ptr<Message> message;
        std::string topic;
        std::size_t source;
    };

    using ConnectionStateHandler = std::function<void(const EndPoint&, ConnectionState)>;

    /// Starts connecting to every endpoint (in the background, retried for as long as the
    /// subscription lives) and subscribes to every topic; an empty topic, or an empty list,
    /// subscribes to everything. `handler` is installed from the start, so that no change is
    /// missed (see `SetConnectionStateHandler`). Throws `TransportException` when an address is
    /// refused or CURVE is not available, `std::invalid_argument` when `endpoints` is empty.
    Subscription(const std::vector<EndPoint>& endpoints, const std::vector<std::string>& topics,
                 const TransportOptions& options = {}, ConnectionStateHandler handler = {});

    /// Shuts down if that has not happened yet, then joins the watching thread.
    ~Subscription();

    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;

    /// Blocks until a notification arrives and returns it; notifications of one publisher come in
    /// the order published, and no endpoint is starved by a busier one. Malformed messages are
    /// dropped, counted and logged (logger "Messaging", level 50). Throws `ObjectShutDownException`
    /// once shut down, also when that happens during the wait; `TransportException` once for a
    /// failure to receive (see the class comment) when every notification received before has
    /// been returned. After a `TransportException` the next call waits as usual: receiving goes
    /// on by itself.
    Event Receive();

    /// How many notifications were received and then dropped: for lack of room in the queue, for
    /// a malformed envelope, or because memory ran out while queueing them. Only grows. Any
    /// thread; takes no lock.
    std::uint64_t GetDroppedCount() const;

    /// True once `ShutDown` has run. Any thread; takes no lock.
    bool IsShutDown() const;

    /// Closes the sockets, wakes a waiting `Receive` (which throws `ObjectShutDownException`) and
    /// reports `ShutDown` to the handler for every endpoint. Returns once no thread uses the
    /// sockets any more; a second call does nothing. Any thread, including the handler.
    void ShutDown();

    /// The endpoints, in the constructor's order.
    const std::vector<EndPoint>& GetEndPoints() const;

    /// The state of the link to each endpoint, in the constructor's order.
    std::vector<ConnectionState> GetConnectionStates() const;

    /// Installs `handler`, called on the subscription's thread with each endpoint's new state; an
    /// empty handler removes it. Once this returns the previous handler is no longer running and
    /// is never called again. The handler may call `GetConnectionStates`, `IsShutDown` and
    /// `ShutDown`, but must not call this function or destroy the subscription.
    void SetConnectionStateHandler(ConnectionStateHandler handler);

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

}  // namespace Korvo::Common::Messaging::Client

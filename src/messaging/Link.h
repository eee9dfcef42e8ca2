#pragma once

#include <poll.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <zmq.hpp>

#include <Korvo/Common/Messaging/EndPoint.h>
#include <Korvo/Common/Messaging/TransportOptions.h>

#include "messaging/Envelope.h"
#include "messaging/WakeSignal.h"

namespace Korvo::Common::Messaging::Detail {

/// The socket events a link's watcher is told of.
inline constexpr int kMonitoredEvents =
    ZMQ_EVENT_CONNECTED | ZMQ_EVENT_CONNECT_DELAYED | ZMQ_EVENT_CONNECT_RETRIED |
    ZMQ_EVENT_DISCONNECTED | ZMQ_EVENT_HANDSHAKE_SUCCEEDED | ZMQ_EVENT_HANDSHAKE_FAILED_NO_DETAIL |
    ZMQ_EVENT_HANDSHAKE_FAILED_PROTOCOL | ZMQ_EVENT_HANDSHAKE_FAILED_AUTH |
    ZMQ_EVENT_MONITOR_STOPPED;

/// One socket connected to one endpoint, shared by the threads of the object that owns it (a
/// messenger's senders and receiver, a subscription's receiver, the watching thread, whoever
/// shuts down).
///
/// ZeroMQ sockets are not thread-safe, so every call on the socket runs under `mutex`, which is
/// held only for non-blocking calls. A receiver with nothing to take registers as a waiter and
/// polls the socket's descriptor (ZMQ_FD) and the owner's wake signal without the lock; a send
/// that finds input waiting (its call on the socket may have consumed the descriptor's signal)
/// notifies the wake signal in its place. Re-creating or closing the socket first wakes every
/// waiter and waits until none is left, so nobody ever polls a closed descriptor.
///
/// Lock order: `mutex` is a leaf; nothing else is locked while it is held.
class Link {
public:
    /// Creates the socket, attaches a monitor, connects to `endpoint`. `topics` matter only for a
    /// SUB socket. `wake` is the owner's, shared by all its links, and must outlive the link.
    /// Throws `TransportException`.
    Link(std::shared_ptr<zmq::context_t> context, zmq::socket_type type, const EndPoint& endpoint,
         const TransportOptions& options, std::vector<std::string> topics, WakeSignal& wake);
    ~Link();

    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    const EndPoint& GetEndPoint() const { return endpoint; }

    /// The monitor socket of the socket made by the constructor, for the watching thread, which
    /// owns it from then on. Once only.
    zmq::socket_t TakeMonitor();

    /// Sends the frames as one message if the transport takes it now; false when it cannot (no
    /// connected peer, queue full), leaving the frames intact. Throws `ObjectShutDownException`
    /// once closed, `TransportException` when the socket fails.
    bool TrySend(std::array<zmq::message_t, kEnvelopeFrames>& frames);

    /// Takes one whole message into `frames` and returns true; or, when none is waiting,
    /// registers the caller as a waiter, sets `fd` to the descriptor to poll and returns false:
    /// the caller then polls `fd` and the wake signal and calls `EndWait`. Throws like `TrySend`.
    bool TakeOrWait(Frames& frames, int& fd);

    /// Throws like `TrySend` once the link is closed; does nothing otherwise.
    void CheckUsable();

    /// Ends the wait that `TakeOrWait` registered.
    void EndWait() noexcept;

    /// Sleeps until `until`, or until the link changes: the watcher's `NotifyChange`, a
    /// re-created socket, closing.
    void WaitForChange(std::chrono::steady_clock::time_point until);

    /// Wakes `WaitForChange` callers, for instance when the link comes up.
    void NotifyChange();

    /// Replaces the socket by a new one connected to the same endpoint, for the watching thread
    /// when the transport dropped the link for good; returns the new socket's monitor, or nothing
    /// once closed. Throws `TransportException` when the new socket cannot be made; the link then
    /// has no socket (its users get that `TransportException`) until a later call succeeds.
    std::optional<zmq::socket_t> Reopen();

    /// Closes the socket for good and returns once no thread waits on it. A second call does
    /// nothing.
    void Close();

private:
    zmq::socket_t Open();
    void Configure(zmq::socket_t& target) const;
    void AwaitNoWaiters(std::unique_lock<std::mutex>& lock);
    void CheckOpen(std::unique_lock<std::mutex>& lock);

    const std::shared_ptr<zmq::context_t> context;
    const zmq::socket_type type;
    const EndPoint endpoint;
    const TransportOptions options;
    const std::vector<std::string> topics;
    WakeSignal& wake;
    std::string publicKey;  // this client's CURVE key pair, when the endpoint is encrypted
    std::string secretKey;

    std::mutex mutex;
    std::condition_variable changed;
    std::optional<zmq::socket_t> socket;  // empty once closed
    std::optional<zmq::socket_t> firstMonitor;
    int waiters = 0;
    bool replacing = false;
    bool closed = false;
    std::string failure;  // why the socket could not be re-created, while it has none
    unsigned long changes = 0;
};

}  // namespace Korvo::Common::Messaging::Detail

namespace Korvo::Common::Messaging::Detail {

/// Where a receiver's `Waits` keep their lists; the receiving thread keeps one across passes, so
/// that waiting allocates nothing once the lists have grown to the number of links.
struct WaitStorage {
    std::vector<Link*> links;
    std::vector<pollfd> items;  // one per link, then the wake signal
};

/// The waits that `Link::TakeOrWait` registered during one pass of a receiver, ended together.
class Waits {
public:
    /// Uses `storage`, which must be empty and stay the caller's own for the pass.
    explicit Waits(WaitStorage& storage) : storage(storage) {}
    ~Waits() { End(); }

    Waits(const Waits&) = delete;
    Waits& operator=(const Waits&) = delete;

    /// Remembers a wait registered on `link` and the descriptor to poll for it.
    void Add(Link& link, int fd);

    /// Polls every registered descriptor and `wake` until one is readable or `timeout` has passed,
    /// drains `wake`, then ends the waits. False on time-out. Throws `TransportException`.
    bool Poll(WakeSignal& wake, std::chrono::milliseconds timeout);

private:
    void End() noexcept;

    WaitStorage& storage;
};

}  // namespace Korvo::Common::Messaging::Detail

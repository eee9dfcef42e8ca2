#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include <zmq.hpp>

#include <Korvo/Common/Messaging/ConnectionState.h>
#include <Korvo/Plexis/Tessel/Logging/ILogger.h>

#include <Korvo/Plexis/Tessel/Logging/RateLimit.h>
#include "messaging/Link.h"
#include "messaging/WakeSignal.h"

namespace Korvo::Common::Messaging::Detail {

/// The thread that watches the links of one messenger or subscription: it reads each socket's
/// monitor events (connection made, handshake done, link lost, retry scheduled; heartbeat
/// time-outs show as a lost link), keeps one `ConnectionState` per link and reports each change
/// to a listener. A failed handshake (which leaves the state as it was: the transport retries)
/// is logged at level 50 once, and again only after a handshake has succeeded. When the transport
/// drops a link for good (a protocol fault, after which ZeroMQ
/// schedules no retry) it re-creates the link's socket.
///
/// Lock order: `listenerMutex` before `stateMutex` (a listener may read the states); neither is
/// held while calling into a link.
class ConnectionMonitor {
public:
    using Listener = std::function<void(std::size_t link, ConnectionState state)>;

    /// Takes the monitor socket of every link, installs `listener` and starts the thread. The
    /// links must outlive it. An inproc link gives no connection events: it counts as connected
    /// from the start.
    ConnectionMonitor(std::vector<Link*> links,
                      std::shared_ptr<Plexis::Tessel::Logging::ILogger> logger, Listener listener);

    /// Stops and joins the thread. Not on the listener.
    ~ConnectionMonitor();

    ConnectionMonitor(const ConnectionMonitor&) = delete;
    ConnectionMonitor& operator=(const ConnectionMonitor&) = delete;

    /// Sets every state to ShutDown at once, and makes the thread report that and end. Any thread,
    /// including the listener.
    void ShutDown();

    /// The state of one link, read without a lock. Any thread.
    ConnectionState State(std::size_t link) const;
    std::vector<ConnectionState> States() const;

    /// How many times link `link` went from connected to anything but shut down. Counted before
    /// the change is reported, so a sender that reads the count and then finds the link up sent on
    /// a link whose loss, if it comes, raises the count. Any thread.
    std::uint64_t Losses(std::size_t link) const;

    /// Replaces the listener; once this returns the previous one is not running and is never
    /// called again. Not on the listener.
    void SetListener(Listener newListener);

private:
    void Run();
    void Watch();
    void ReadEvents(std::size_t link);
    void Apply(std::size_t link, int event, std::uint32_t value);
    void LogHandshakeFailure(std::size_t link, int event, std::uint32_t value);
    void RecreateDroppedLinks();
    void Report(std::size_t link, ConnectionState state);
    void Tell(std::size_t link, ConnectionState state);

    const std::vector<Link*> links;
    const std::shared_ptr<Plexis::Tessel::Logging::ILogger> logger;
    WakeSignal wake;
    std::atomic<bool> stopping{false};

    // Changes to the states are made under `stateMutex`; a single state is read without it, since
    // every send asks for its link's state.
    mutable std::mutex stateMutex;
    std::vector<std::atomic<ConnectionState>> states;
    std::vector<std::atomic<std::uint64_t>> losses;

    std::mutex listenerMutex;
    Listener listener;

    // The thread's own.
    std::vector<zmq::socket_t> monitors;
    std::vector<std::optional<std::chrono::steady_clock::time_point>> retryDue;
    std::vector<bool> everConnected;
    std::vector<bool> handshakeFailing;  // a failure was logged at level 50 since the last success
    std::vector<int> reopenFailures;     // failed re-creations of the socket in a row
    Plexis::Tessel::Logging::RateLimit reopenFailureLog;
    Plexis::Tessel::Logging::RateLimit watchFailureLog;

    std::thread thread;
};

}  // namespace Korvo::Common::Messaging::Detail

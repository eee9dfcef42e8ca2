#include "messaging/Link.h"

#include <poll.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>

#include <Korvo/Common/Messaging/ObjectShutDownException.h>
#include <Korvo/Common/Messaging/TransportException.h>

#include "messaging/FaultInjection.h"

namespace Korvo::Common::Messaging::Detail {
namespace {

int Milliseconds(std::chrono::milliseconds duration) {
    return static_cast<int>(duration.count());
}

// Whether `address` names an IPv6 host (tcp://[addr]:port): ZeroMQ resolves IPv6 addresses only
// on a socket told to, and telling every socket would let a host name resolve to an IPv6 address
// that the server does not listen on.
bool IsIpv6(const std::string& address) {
    return address.rfind("tcp://[", 0) == 0;
}

// How many replies the command link lets wait in ZeroMQ: as many of the largest allowed size as
// fit in `receiveQueueBytes`, at least one, at most `receiveHighWaterMark` (0: no count limit).
int ReplyQueueMessages(const TransportOptions& options) {
    const std::int64_t largest = std::max<std::int64_t>(options.maxMessageSize, 1);
    std::int64_t count = std::max<std::int64_t>(options.receiveQueueBytes / largest, 1);
    if (options.receiveHighWaterMark > 0) {
        count = std::min<std::int64_t>(count, options.receiveHighWaterMark);
    }
    return static_cast<int>(std::min<std::int64_t>(count, INT_MAX));
}

TransportException Failure(const EndPoint& endpoint, const char* what, const zmq::error_t& error) {
    return TransportException(std::string(what) + " " + endpoint.Address() + ": " + error.what());
}

}  // namespace

Link::Link(std::shared_ptr<zmq::context_t> context, zmq::socket_type type, const EndPoint& endpoint,
           const TransportOptions& options, std::vector<std::string> topics, WakeSignal& wake)
    : context(std::move(context)),
      type(type),
      endpoint(endpoint),
      options(options),
      topics(std::move(topics)),
      wake(wake) {
    if (endpoint.IsEncrypted()) {
        if (!zmq_has("curve")) {
            throw TransportException("CURVE encryption for " + endpoint.Address() +
                                     " is not available in this ZeroMQ library");
        }
        // A fresh key pair per link: the server learns nothing that outlives the connection.
        char publicZ85[41];
        char secretZ85[41];
        zmq_curve_keypair(publicZ85, secretZ85);
        publicKey = publicZ85;
        secretKey = secretZ85;
    }
    std::lock_guard<std::mutex> lock(mutex);
    firstMonitor = Open();
}

Link::~Link() {
    Close();
}

zmq::socket_t Link::TakeMonitor() {
    std::lock_guard<std::mutex> lock(mutex);
    zmq::socket_t monitor = std::move(*firstMonitor);
    firstMonitor.reset();
    return monitor;
}

void Link::Configure(zmq::socket_t& target) const {
    // Closing (shut-down, re-creation) must never wait to deliver what is still queued: a command
    // that has not left by then is stale, and a blocked close would stall the caller.
    target.set(zmq::sockopt::linger, 0);
    // Commands beyond this many waiting for the server are not worth queueing: the server is not
    // keeping up, and Send's bounded wait then drops them rather than deliver them late.
    target.set(zmq::sockopt::sndhwm, options.sendHighWaterMark);
    // Bursts of notifications must not be dropped while the application is briefly busy: queue
    // generously on our side. Replies are bounded in bytes: once that many wait, ZeroMQ stops
    // reading from the server, which holds the server back rather than dropping anything.
    target.set(zmq::sockopt::rcvhwm, type == zmq::socket_type::dealer
                                         ? ReplyQueueMessages(options)
                                         : options.receiveHighWaterMark);
    if (IsIpv6(endpoint.Address())) {
        target.set(zmq::sockopt::ipv6, true);
    }
    // A peer must not make us allocate without bound: a larger frame drops the link.
    target.set(zmq::sockopt::maxmsgsize, options.maxMessageSize);
    // Retry soon after a server restart, but back off so that a server that stays down (or a
    // refused connection) is not hammered: 100 ms doubling up to 10 s by default.
    target.set(zmq::sockopt::reconnect_ivl, Milliseconds(options.reconnectInterval));
    target.set(zmq::sockopt::reconnect_ivl_max, Milliseconds(options.reconnectIntervalMax));
    // An attempt towards an unplugged host is abandoned and retried on that schedule instead of
    // waiting minutes for the kernel, and a peer that accepts but never greets is dropped.
    target.set(zmq::sockopt::connect_timeout, Milliseconds(options.connectTimeout));
    target.set(zmq::sockopt::handshake_ivl, Milliseconds(options.connectTimeout));
    // TCP alone notices a dead peer only when it next writes, and a pulled cable not at all:
    // pings on a quiet link make a dead server show as down within interval + timeout. The TTL
    // asks the server to drop us likewise if we go silent.
    target.set(zmq::sockopt::heartbeat_ivl, Milliseconds(options.heartbeatInterval));
    target.set(zmq::sockopt::heartbeat_timeout, Milliseconds(options.heartbeatTimeout));
    target.set(zmq::sockopt::heartbeat_ttl, Milliseconds(options.heartbeatTimeout));
    if (type == zmq::socket_type::dealer) {
        // Queue a command only on a connection whose handshake is complete. Without this ZeroMQ
        // keeps commands for an absent server and delivers them whenever one appears.
        target.set(zmq::sockopt::immediate, true);
    }
    if (type == zmq::socket_type::sub) {
        if (topics.empty()) {
            target.set(zmq::sockopt::subscribe, "");
        }
        for (const std::string& topic : topics) {
            target.set(zmq::sockopt::subscribe, topic);
        }
    }
    if (endpoint.IsEncrypted()) {
        target.set(zmq::sockopt::curve_serverkey, endpoint.ServerPublicKey());
        target.set(zmq::sockopt::curve_publickey, publicKey);
        target.set(zmq::sockopt::curve_secretkey, secretKey);
    }
}

zmq::socket_t Link::Open() {
    static std::atomic<unsigned long> monitorCount{0};
    InjectFault(FaultPoint::OpenSocket, endpoint.Address());
    try {
        socket.emplace(*context, type);
        Configure(*socket);
        // The monitor reports connection events over inproc; our end is connected before the
        // socket connects so that no event is missed.
        const std::string monitorAddress =
            "inproc://korvo-link-monitor-" + std::to_string(++monitorCount);
        if (zmq_socket_monitor(socket->handle(), monitorAddress.c_str(), kMonitoredEvents) != 0) {
            throw zmq::error_t();
        }
        zmq::socket_t monitor(*context, zmq::socket_type::pair);
        monitor.set(zmq::sockopt::linger, 0);
        monitor.connect(monitorAddress);
        socket->connect(endpoint.Address());
        return monitor;
    } catch (const zmq::error_t& error) {
        socket.reset();
        throw Failure(endpoint, "cannot connect to", error);
    }
}

void Link::CheckOpen(std::unique_lock<std::mutex>& lock) {
    changed.wait(lock, [this] { return !replacing; });
    if (closed) {
        throw ObjectShutDownException("connection to " + endpoint.Address() + " shut down");
    }
    if (!socket) {
        throw TransportException(failure);  // the last re-creation failed; the next may not
    }
}

bool Link::TrySend(std::array<zmq::message_t, kEnvelopeFrames>& frames) {
    std::unique_lock<std::mutex> lock(mutex);
    CheckOpen(lock);
    bool sent = false;
    bool inputWaiting = false;
    try {
        sent = socket->send(frames[0], zmq::send_flags::sndmore | zmq::send_flags::dontwait)
                   .has_value();
        // Once the first frame is accepted ZeroMQ accepts the rest of the message.
        for (std::size_t i = 1; sent && i < frames.size(); ++i) {
            const auto more =
                i + 1 < frames.size() ? zmq::send_flags::sndmore : zmq::send_flags::none;
            if (!socket->send(frames[i], more | zmq::send_flags::dontwait)) {
                throw TransportException("the rest of a command to " + endpoint.Address() +
                                         " was refused");
            }
        }
        // Sending, even in vain, may have consumed the descriptor's signal of a reply that a
        // receiver is polling for; if a reply is waiting, wake that receiver here. A receiver that
        // is not polling yet tries the socket before it polls, so it needs no wake-up.
        inputWaiting = waiters > 0 && (socket->get(zmq::sockopt::events) & ZMQ_POLLIN) != 0;
    } catch (const zmq::error_t& error) {
        throw Failure(endpoint, "cannot send to", error);
    }
    lock.unlock();
    if (inputWaiting) {
        wake.Notify();
    }
    return sent;
}

bool Link::TakeOrWait(Frames& frames, int& fd) {
    std::unique_lock<std::mutex> lock(mutex);
    CheckOpen(lock);
    try {
        frames.count = 0;
        if (!socket->recv(frames.parts[0], zmq::recv_flags::dontwait)) {
            // The failed receive processed the socket's pending commands, so from here on its
            // descriptor signals anything new.
            fd = socket->get(zmq::sockopt::fd);
            ++waiters;
            return false;
        }
        frames.count = 1;
        bool more = frames.parts[0].more();
        zmq::message_t extra;
        while (more) {
            // The parts of a message arrive together: once the first is there, so are the others.
            zmq::message_t& part =
                frames.count < frames.parts.size() ? frames.parts[frames.count] : extra;
            if (!socket->recv(part, zmq::recv_flags::dontwait)) {
                break;
            }
            ++frames.count;
            more = part.more();
        }
        return true;
    } catch (const zmq::error_t& error) {
        throw Failure(endpoint, "cannot receive from", error);
    }
}

void Link::CheckUsable() {
    std::unique_lock<std::mutex> lock(mutex);
    CheckOpen(lock);
}

void Link::EndWait() noexcept {
    std::lock_guard<std::mutex> lock(mutex);
    if (--waiters == 0) {
        changed.notify_all();
    }
}

void Link::WaitForChange(std::chrono::steady_clock::time_point until) {
    std::unique_lock<std::mutex> lock(mutex);
    const unsigned long seen = changes;
    changed.wait_until(lock, until, [&] { return closed || changes != seen; });
}

void Link::NotifyChange() {
    {
        std::lock_guard<std::mutex> lock(mutex);
        ++changes;
    }
    changed.notify_all();
    wake.Notify();  // a receiver polling this link learns of the change at once
}

void Link::AwaitNoWaiters(std::unique_lock<std::mutex>& lock) {
    wake.Notify();
    changed.wait(lock, [this] { return waiters == 0; });
}

std::optional<zmq::socket_t> Link::Reopen() {
    std::unique_lock<std::mutex> lock(mutex);
    if (closed) {
        return std::nullopt;
    }
    replacing = true;
    AwaitNoWaiters(lock);
    std::optional<zmq::socket_t> monitor;
    if (!closed) {
        socket.reset();
        try {
            monitor = Open();
        } catch (const TransportException& error) {
            // Without a socket the link is unusable until a later call succeeds; until then every
            // caller is told why.
            failure = error.what();
            replacing = false;
            ++changes;
            changed.notify_all();
            throw;
        }
    }
    replacing = false;
    ++changes;
    changed.notify_all();
    return monitor;
}

void Link::Close() {
    std::unique_lock<std::mutex> lock(mutex);
    if (closed) {
        return;
    }
    closed = true;
    ++changes;
    changed.notify_all();  // senders waiting for a connection
    AwaitNoWaiters(lock);
    socket.reset();
    firstMonitor.reset();
}

void Waits::Add(Link& link, int fd) {
    storage.links.push_back(&link);
    storage.items.push_back({fd, POLLIN, 0});
}

bool Waits::Poll(WakeSignal& wake, std::chrono::milliseconds timeout) {
    std::vector<pollfd>& items = storage.items;
    items.push_back({wake.Fd(), POLLIN, 0});
    const auto limit = std::min<std::chrono::milliseconds::rep>(timeout.count(), INT_MAX);
    const int ready = ::poll(items.data(), items.size(), static_cast<int>(limit));
    const int error = errno;
    if (items.back().revents != 0) {
        wake.Drain();
    }
    End();
    if (ready < 0 && error != EINTR) {
        throw TransportException(std::string("cannot wait for input: ") + std::strerror(error));
    }
    return ready > 0;
}

void Waits::End() noexcept {
    for (Link* link : storage.links) {
        link->EndWait();
    }
    storage.links.clear();
    storage.items.clear();
}

}  // namespace Korvo::Common::Messaging::Detail

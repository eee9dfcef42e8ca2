#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <zmq.hpp>

#include <Korvo/Common/Messaging/ConnectionState.h>

#include "support/Waiting.h"

namespace Korvo::Testing {

using Common::Messaging::ConnectionState;
using Frames = std::vector<std::string>;

/// The four bytes of `ticket` as they travel: signed 32-bit, least significant byte first.
std::string TicketBytes(int ticket);

/// The ticket that four such bytes carry.
int TicketOf(const std::string& bytes);

/// A server's command socket: a ROUTER bound to loopback (a free port unless one is given),
/// with the endpoint read back. Used from one thread at a time.
class RouterPeer {
public:
    /// `curveSecretKey` (Z85) makes it a CURVE server.
    explicit RouterPeer(const std::string& address = "tcp://127.0.0.1:*",
                        const std::string& curveSecretKey = "");

    /// The bound address, for example tcp://127.0.0.1:41234.
    const std::string& Address() const { return address; }

    /// The next message's frames, the sender's identity first; nothing after `limit`.
    std::optional<Frames> Receive(std::chrono::milliseconds limit = kPatience);

    /// Sends `frames` as one message; the first is the identity of the client to send to.
    void Send(const Frames& frames);

    /// Sends a well-formed reply [ticket][header][payload] to `identity`.
    void Reply(const std::string& identity, int ticket, const std::string& header,
               const std::string& payload);

    /// Sends `frames` again and again, as fast as ZeroMQ takes them (what does not fit towards
    /// the client is dropped here, as a server's ROUTER does), until `duration` has passed or
    /// `stop` is set. Returns how many were sent.
    long Flood(const Frames& frames, std::chrono::milliseconds duration,
               const std::atomic<bool>& stop);

private:
    zmq::context_t context;
    zmq::socket_t socket;
    std::string address;
};

/// A client's command socket: a DEALER connected to `endpoint`, to send what the library's clients
/// never would. One made `slow` takes as little as it can until it reads, so that replies pile up
/// on the server's side. Used from one thread at a time.
class DealerPeer {
public:
    explicit DealerPeer(const std::string& endpoint, bool slow = false);

    /// Sends `frames` as one message, waiting for room.
    void Send(const Frames& frames);

    /// Sends `frames` as one message if there is room now; false, sending nothing, otherwise.
    bool TrySend(const Frames& frames);

    /// The next message's frames; empty when none came within `limit`.
    Frames Receive(std::chrono::milliseconds limit = kPatience);

private:
    zmq::context_t context;
    zmq::socket_t socket;
};

/// A server's notification socket: an XPUB bound to a free loopback port, which sees the
/// subscriptions arrive, so a test can wait for them instead of guessing.
class PublisherPeer {
public:
    /// `sendHighWaterMark` bounds what waits for a slow subscriber (ZeroMQ drops the rest); 0
    /// queues without limit, so that nothing is lost on this side. With `waitForRoom`, `Publish`
    /// waits for room instead of dropping: nothing is lost on this side either, in bounded memory.
    explicit PublisherPeer(int sendHighWaterMark = 1000, bool waitForRoom = false);

    const std::string& Address() const { return address; }

    /// Waits until every topic of `topics` has been subscribed to; false after `limit`.
    bool WaitForSubscriptions(const std::vector<std::string>& topics,
                              std::chrono::milliseconds limit = kPatience);

    /// Publishes [topic][header][payload].
    void Publish(const std::string& topic, const std::string& header, const std::string& payload);

    /// Publishes any frames as one message.
    void PublishFrames(const Frames& frames);

private:
    zmq::context_t context;
    zmq::socket_t socket;
    std::string address;
    std::vector<std::string> subscribed;
};

/// Forwards TCP connections from a loopback port of its own to `targetPort` until `Unplug`,
/// after which nothing passes either way and nothing is closed: to the client the server looks
/// like a host whose cable was pulled.
class TcpRelay {
public:
    explicit TcpRelay(int targetPort);
    ~TcpRelay();

    TcpRelay(const TcpRelay&) = delete;
    TcpRelay& operator=(const TcpRelay&) = delete;

    int Port() const { return port; }
    void Unplug() { unplugged.store(true); }
    /// Forwards again: connections made while unplugged fail on their first read and are closed,
    /// so that the client connects anew, as after a cable is plugged back in.
    void Replug() { unplugged.store(false); }

private:
    void Run();

    int listener = -1;
    int port = 0;
    int targetPort;
    int stopPipe[2] = {-1, -1};
    std::atomic<bool> unplugged{false};
    std::vector<std::pair<int, int>> connections;  // the thread's: client side, server side
    std::thread thread;
};

/// Records the states a connection-state handler reports and lets a test wait for one.
class StateLog {
public:
    void Record(ConnectionState state);

    /// Waits until `state` has been reported at least `times` times in all; false after `limit`.
    bool WaitFor(ConnectionState state, int times = 1, std::chrono::milliseconds limit = kPatience);

    std::vector<ConnectionState> Seen() const;

private:
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::vector<ConnectionState> seen;
};

/// The port of a tcp://host:port address.
int PortOf(const std::string& address);

}  // namespace Korvo::Testing

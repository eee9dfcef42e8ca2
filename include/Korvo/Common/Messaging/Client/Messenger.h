#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <Korvo/Common/Messaging/ConnectionState.h>
#include <Korvo/Common/Messaging/EndPoint.h>
#include <Korvo/Common/Messaging/Message.h>
#include <Korvo/Common/Messaging/TransportOptions.h>
#include <Korvo/Common/Serialization/Buffer.h>

namespace Korvo::Common::Messaging::Client {

/// The command link to one server: a ZeroMQ DEALER socket connected to the server's ROUTER. Each
/// command and each reply is one message of three frames, [ticket][header][payload]
/// (docs/protocol.md). The client library's `ZmqMessenger` makes one the transport of a command
/// client.
///
/// A command is only ever queued on a link whose handshake is complete. While the first connection
/// is still being made, or the send queue is full, `TrySend` waits up to
/// `TransportOptions::sendWait`; on a link that was up and is lost it does not wait. A command it
/// cannot queue is dropped and logged (logger "Messaging", level 50, a few lines a second at
/// most), and `TrySend` returns false, which a `CommandClient` reports as `NotSent`: the command
/// never reaches a server that appears later.
///
/// Threads: `Send` from any number of threads at once; `Receive` from one thread at a time;
/// `ShutDown`, `IsShutDown`, `GetConnectionState` and `SetConnectionStateHandler` from any thread.
/// The messenger runs one thread of its own, which watches the link and calls the handler. The
/// destructor must not run while another thread is inside the messenger, nor on the handler.
class Messenger final {
public:
    using ConnectionStateHandler = std::function<void(ConnectionState)>;

    /// Starts connecting to `server` (the connection completes in the background, and is retried
    /// for as long as the messenger lives) and starts the watching thread, with `handler`
    /// installed from the start so that no change is missed (see `SetConnectionStateHandler`).
    /// Throws `TransportException` when the address is refused, CURVE is not available, or the
    /// process cannot open the dozen file descriptors a messenger may need (the message says so).
    explicit Messenger(const EndPoint& server, const TransportOptions& options = {},
                       ConnectionStateHandler handler = {});

    /// Shuts down if that has not happened yet, then joins the watching thread.
    ~Messenger();

    Messenger(const Messenger&) = delete;
    Messenger& operator=(const Messenger&) = delete;

    /// True once `ShutDown` has run. Any thread; takes no lock.
    bool IsShutDown() const;

    /// Closes the socket, wakes a `Receive` or `Send` that is waiting (they throw
    /// `ObjectShutDownException`, as every later call does) and reports `ShutDown` to the handler.
    /// Returns once no thread uses the socket any more. A second call does nothing. Any thread,
    /// including the handler.
    void ShutDown();

    /// Queues one command under `ticket` and returns true; the bytes of `payload` are copied once,
    /// into the frame. Returns false when the command could not be queued (see the class
    /// comment). Throws `ObjectShutDownException` once shut down, `TransportException` when the
    /// socket fails.
    bool TrySend(const int& ticket, const std::string& commandName,
                 const Serialization::Buffer& payload);

    /// `TrySend`, ignoring whether the command was queued.
    void Send(const int& ticket, const std::string& commandName,
              const Serialization::Buffer& payload);

    /// How many times the link was lost after its handshake had succeeded. Any thread.
    std::uint64_t GetLinkLosses() const;

    /// The next well-formed reply, or an empty pointer when none arrived within `receiveWait`, or
    /// as soon as the link is lost. Never returns later than `receiveWait` after it was called,
    /// however many messages arrive. Malformed messages are dropped and logged (level 50, a few
    /// lines a second at most). Throws `ObjectShutDownException` once shut down, also when that
    /// happens during the wait.
    std::unique_ptr<Message> Receive();

    /// The state of the link to the server. Any thread, including the handler.
    ConnectionState GetConnectionState() const;

    /// Installs `handler`, called on the messenger's thread with each new state; an empty handler
    /// removes it. Once this returns the previous handler is no longer running and is never called
    /// again. The handler may call `GetConnectionState`, `IsShutDown` and `ShutDown`, but must not
    /// call this function or destroy the messenger.
    void SetConnectionStateHandler(ConnectionStateHandler handler);

    /// The endpoint given to the constructor.
    const EndPoint& GetEndPoint() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

}  // namespace Korvo::Common::Messaging::Client

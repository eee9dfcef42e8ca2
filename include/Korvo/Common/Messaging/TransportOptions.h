#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace Korvo::Common::Messaging {

/// How a `Client::Messenger` or `Client::Subscription` sets up its sockets. The defaults suit a
/// replay server on a local network; docs/protocol.md says what each one means on the wire.
struct TransportOptions {
    /// How long `Messenger::Receive` waits when no reply is there before it returns an empty
    /// pointer. A reply that arrives ends the wait at once; this only bounds how long a paused
    /// command client takes to notice.
    std::chrono::milliseconds receiveWait{100};

    /// How long `Messenger::Send` waits for a connected server (or for room in the send queue).
    /// After it the command is dropped and logged, never queued for a server that appears later.
    std::chrono::milliseconds sendWait{250};

    /// A ping is sent after this long without traffic; the link is declared dead and retried when
    /// nothing arrives for `heartbeatTimeout` after a ping.
    std::chrono::milliseconds heartbeatInterval{1000};
    std::chrono::milliseconds heartbeatTimeout{3000};

    /// First wait before a new attempt after a lost or refused connection; it doubles with each
    /// failed attempt up to `reconnectIntervalMax`.
    std::chrono::milliseconds reconnectInterval{100};
    std::chrono::milliseconds reconnectIntervalMax{10000};

    /// How long one connection attempt (TCP connect, then greeting and CURVE handshake) may take.
    std::chrono::milliseconds connectTimeout{5000};

    /// Largest message a messenger accepts from its server (a subscription has
    /// `maxNotificationSize`); a larger one drops the link, which is then re-created.
    std::int64_t maxMessageSize = 16 * 1024 * 1024;

    /// Most commands queued towards the server, and most replies queued towards the application
    /// in ZeroMQ; 0 means no limit. A messenger's replies are bounded by `receiveQueueBytes` too.
    int sendHighWaterMark = 1000;
    int receiveHighWaterMark = 100000;

    /// The most bytes of replies a `Messenger` lets wait in ZeroMQ for `Receive`. ZeroMQ counts
    /// messages, so the messenger lets at most `receiveQueueBytes / maxMessageSize` replies wait
    /// (at least 1, at most `receiveHighWaterMark`): 4 with the defaults. Beyond that ZeroMQ stops
    /// reading from the server until the reception thread has taken some: nothing is dropped on
    /// this side, and the backlog waits in the server's send queue.
    std::int64_t receiveQueueBytes = 64 * 1024 * 1024;

    /// Most bytes of notifications that wait in a subscription's queue for `Receive` (64 MiB):
    /// what arrives beyond is dropped and counted. Each notification is charged its payload, its
    /// header and topic and 256 bytes of bookkeeping; one notification is always let in when none
    /// waits. ZeroMQ's own queue of each subscription socket holds at most as many notifications
    /// as `notificationQueueBytes / maxNotificationSize` (at least 1; 32 by default), so it holds
    /// no more bytes than this either.
    std::size_t notificationQueueBytes = 64 * 1024 * 1024;

    /// Largest notification a subscription accepts (2 MiB); a larger one makes the transport
    /// drop the link, which is then re-created. Replies are bounded by `maxMessageSize` instead.
    std::int64_t maxNotificationSize = 2 * 1024 * 1024;
};

}  // namespace Korvo::Common::Messaging

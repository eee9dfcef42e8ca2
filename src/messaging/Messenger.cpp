#include <Korvo/Common/Messaging/Client/Messenger.h>

#include <algorithm>
#include <atomic>
#include <chrono>

#include <Korvo/Common/Messaging/ObjectShutDownException.h>
#include <Korvo/Plexis/Tessel/Logging/Loggers.h>

#include <Korvo/Plexis/Tessel/Logging/Log.h>
#include <Korvo/Plexis/Tessel/Logging/RateLimit.h>
#include "messaging/ConnectionMonitor.h"
#include "messaging/Envelope.h"
#include "messaging/Link.h"
#include "messaging/ZmqContext.h"

namespace Korvo::Common::Messaging::Client {
namespace {

using Plexis::Tessel::Logging::ILogger;
using Plexis::Tessel::Logging::RateLimit;
using Plexis::Tessel::Logging::Suppressed;
using Clock = std::chrono::steady_clock;

constexpr const char* kSource = "Korvo/Common/Messaging/Client/Messenger";

// While Send waits, it retries at least this often: a full queue drains without any event.
constexpr std::chrono::milliseconds kSendRetryStep{10};

Detail::ConnectionMonitor::Listener ListenerFor(Messenger::ConnectionStateHandler handler) {
    if (!handler) {
        return nullptr;
    }
    return [handler = std::move(handler)](std::size_t, ConnectionState state) { handler(state); };
}

// The descriptors a messenger needs beyond what the process has: for a new ZeroMQ context its
// two threads' pollers and mailboxes and its own mailbox (5), the socket's and its monitor's
// mailboxes and the monitor's inproc pair (3), the two wake signals (2), the TCP connection and
// one spare for a reconnection (2).
constexpr int kDescriptorsNeeded = 12;

bool EnoughDescriptors(const EndPoint& server) {
    Detail::RequireDescriptors(kDescriptorsNeeded, "cannot connect to " + server.Address());
    return true;
}

}  // namespace

class Messenger::Impl {
public:
    Impl(const EndPoint& server, const TransportOptions& options, ConnectionStateHandler handler)
        : descriptorsChecked(EnoughDescriptors(server)),
          options(options),
          logger(Plexis::Tessel::Logging::Loggers::GetInstance().GetLogger("Messaging")),
          context(Detail::SharedZmqContext()),
          link(context, zmq::socket_type::dealer, server, options, {}, wake),
          monitor({&link}, logger, ListenerFor(std::move(handler))) {}

    const bool descriptorsChecked;  // before anything that takes a descriptor is made
    const TransportOptions options;
    const std::shared_ptr<ILogger> logger;
    const std::shared_ptr<zmq::context_t> context;
    Detail::WakeSignal wake;
    Detail::Link link;
    Detail::ConnectionMonitor monitor;
    std::atomic<bool> shutDown{false};
    // The receiving thread's.
    Detail::Frames frames;
    Detail::WaitStorage waitStorage;
};

Messenger::Messenger(const EndPoint& server, const TransportOptions& options,
                     ConnectionStateHandler handler)
    : impl(std::make_unique<Impl>(server, options, std::move(handler))) {}

Messenger::~Messenger() {
    ShutDown();
}

bool Messenger::IsShutDown() const {
    return impl->shutDown.load();
}

void Messenger::ShutDown() {
    if (impl->shutDown.exchange(true)) {
        return;
    }
    impl->monitor.ShutDown();
    impl->link.Close();
}

void Messenger::Send(const int& ticket, const std::string& commandName,
                     const Serialization::Buffer& payload) {
    TrySend(ticket, commandName, payload);  // a command not sent is logged there
}

bool Messenger::TrySend(const int& ticket, const std::string& commandName,
                        const Serialization::Buffer& payload) {
    if (impl->shutDown.load()) {
        throw ObjectShutDownException("Send: messenger shut down.");
    }
    auto frames = Detail::CommandFrames(ticket, commandName, payload);
    const Clock::time_point deadline = Clock::now() + impl->options.sendWait;
    for (;;) {
        // Queue only on a link known to be up: right after a loss ZeroMQ may still accept a
        // message into the broken connection's queue, where it would be silently discarded.
        const ConnectionState state = GetConnectionState();
        if (state == ConnectionState::Connected) {
            if (impl->link.TrySend(frames)) {
                return true;
            }
        } else {
            impl->link.CheckUsable();
        }
        // A link that was up and is lost is known to be down: waiting would only delay the answer.
        // A link still coming up for the first time, or a full queue, gets the send wait.
        const bool lost = state == ConnectionState::Reconnecting ||
                          state == ConnectionState::Disconnected;
        const Clock::time_point now = Clock::now();
        if (lost || now >= deadline) {
            static RateLimit limit;
            if (const auto admitted = limit.Admit()) {
                KORVO_LOG_COMPOSED(
                    impl->logger, ILogger::Error, [&] {
                        const std::string why =
                            state == ConnectionState::Connected
                                ? "the send queue to " + impl->link.GetEndPoint().Address() +
                                      " stayed full for " +
                                      std::to_string(impl->options.sendWait.count()) + " ms"
                            : lost ? "the link to " + impl->link.GetEndPoint().Address() +
                                         " is down"
                                   : "no server connected at " +
                                         impl->link.GetEndPoint().Address() + " within " +
                                         std::to_string(impl->options.sendWait.count()) + " ms";
                        return "Send: command " + commandName + " (ticket " +
                               std::to_string(ticket) + ") not sent: " + why + "." +
                               Suppressed(*admitted);
                    });
            }
            return false;
        }
        impl->link.WaitForChange(std::min(deadline, now + kSendRetryStep));
    }
}

std::uint64_t Messenger::GetLinkLosses() const {
    return impl->monitor.Losses(0);
}

std::unique_ptr<Message> Messenger::Receive() {
    if (impl->shutDown.load()) {
        throw ObjectShutDownException("Receive: messenger shut down.");
    }
    const Clock::time_point deadline = Clock::now() + impl->options.receiveWait;
    const std::uint64_t losses = GetLinkLosses();
    for (;;) {
        Detail::Waits waits(impl->waitStorage);
        int fd = -1;
        if (impl->link.TakeOrWait(impl->frames, fd)) {
            std::string problem;
            std::unique_ptr<Message> message = Detail::ReplyFromFrames(impl->frames, problem);
            if (message->IsValid()) {
                return message;
            }
            static RateLimit limit;
            if (const auto admitted = limit.Admit()) {
                KORVO_LOG_COMPOSED(impl->logger, ILogger::Error, [&] {
                    return "Receive: dropped a malformed reply (" + problem + ")." +
                           Suppressed(*admitted);
                });
            }
            // A stream of malformed messages must not hold the caller past its wait.
            if (Clock::now() >= deadline) {
                return nullptr;
            }
            continue;
        }
        waits.Add(impl->link, fd);
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0 || !waits.Poll(impl->wake, left)) {
            return nullptr;
        }
        if (GetLinkLosses() != losses) {
            return nullptr;  // the caller may want to act on the loss at once
        }
    }
}

ConnectionState Messenger::GetConnectionState() const {
    return impl->monitor.State(0);
}

void Messenger::SetConnectionStateHandler(ConnectionStateHandler handler) {
    impl->monitor.SetListener(ListenerFor(std::move(handler)));
}

const EndPoint& Messenger::GetEndPoint() const {
    return impl->link.GetEndPoint();
}

}  // namespace Korvo::Common::Messaging::Client

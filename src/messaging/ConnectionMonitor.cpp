#include "messaging/ConnectionMonitor.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <string>

#include <poll.h>

#include <Korvo/Plexis/Tessel/Logging/Log.h>

namespace Korvo::Common::Messaging::Detail {
namespace {

using Plexis::Tessel::Logging::ILogger;
using Plexis::Tessel::Logging::Suppressed;
using Clock = std::chrono::steady_clock;

constexpr const char* kSource = "Korvo/Common/Messaging/ConnectionMonitor";

// After a link is lost ZeroMQ schedules the next attempt at once (a "retried" or "delayed"
// event follows within microseconds). If none has come after this long, the transport has
// dropped the link for good and it is re-created.
constexpr std::chrono::seconds kRetryGrace{2};

// A socket that cannot be re-created (no file descriptors or memory left, for a while) is tried
// again after this long, doubling with each failure up to kReopenRetryMax: soon enough that the
// link is back well within a second or two of the cause clearing, rare enough to cost nothing.
constexpr std::chrono::milliseconds kReopenRetry{50};
constexpr std::chrono::milliseconds kReopenRetryMax{500};

// How long the thread waits before watching again after its own wait failed.
constexpr std::chrono::milliseconds kWatchRetry{200};

}  // namespace

ConnectionMonitor::ConnectionMonitor(std::vector<Link*> links, std::shared_ptr<ILogger> logger,
                                     Listener listener)
    : links(std::move(links)),
      logger(std::move(logger)),
      states(this->links.size()),
      losses(this->links.size()),
      listener(std::move(listener)),
      retryDue(this->links.size()),
      everConnected(this->links.size(), false),
      handshakeFailing(this->links.size(), false),
      reopenFailures(this->links.size(), 0) {
    for (std::size_t link = 0; link < this->links.size(); ++link) {
        monitors.push_back(this->links[link]->TakeMonitor());
        states[link].store(ConnectionState::Connecting);
        if (this->links[link]->GetEndPoint().Address().rfind("inproc://", 0) == 0) {
            states[link].store(ConnectionState::Connected);
            everConnected[link] = true;
        }
    }
    thread = std::thread(&ConnectionMonitor::Run, this);
}

ConnectionMonitor::~ConnectionMonitor() {
    stopping.store(true);
    wake.Notify();
    thread.join();
}

void ConnectionMonitor::ShutDown() {
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        for (auto& state : states) {
            state.store(ConnectionState::ShutDown);
        }
    }
    stopping.store(true);
    wake.Notify();
}

ConnectionState ConnectionMonitor::State(std::size_t link) const {
    return states.at(link).load();
}

std::uint64_t ConnectionMonitor::Losses(std::size_t link) const {
    return losses.at(link).load();
}

std::vector<ConnectionState> ConnectionMonitor::States() const {
    std::lock_guard<std::mutex> lock(stateMutex);
    std::vector<ConnectionState> copy;
    for (const auto& state : states) {
        copy.push_back(state.load());
    }
    return copy;
}

void ConnectionMonitor::SetListener(Listener newListener) {
    std::lock_guard<std::mutex> lock(listenerMutex);
    listener = std::move(newListener);
}

void ConnectionMonitor::Run() {
    // A failure of the watching itself (a failed poll, memory running out) must not leave the
    // states frozen for good: the thread waits a moment and watches again.
    while (!stopping.load()) {
        try {
            Watch();
        } catch (const std::exception& error) {
            if (const auto admitted = watchFailureLog.Admit()) {
                KORVO_LOG_COMPOSED(logger, ILogger::Error, [&] {
                    return std::string("Run: watching the connections failed (") + error.what() +
                           "); trying again." + Suppressed(*admitted);
                });
            }
            pollfd wakeItem{wake.Fd(), POLLIN, 0};
            if (::poll(&wakeItem, 1, static_cast<int>(kWatchRetry.count())) > 0) {
                wake.Drain();
            }
        }
    }
    monitors.clear();
    // A shut-down set every state already; the listener hears of it here, on this thread.
    for (std::size_t link = 0; link < links.size(); ++link) {
        if (State(link) == ConnectionState::ShutDown) {
            Tell(link, ConnectionState::ShutDown);
        }
    }
}

void ConnectionMonitor::Watch() {
    std::vector<zmq_pollitem_t> items;
    while (!stopping.load()) {
        items.clear();
        for (zmq::socket_t& monitor : monitors) {
            items.push_back({monitor.handle(), 0, ZMQ_POLLIN, 0});
        }
        items.push_back({nullptr, wake.Fd(), ZMQ_POLLIN, 0});

        long timeout = -1;
        const Clock::time_point now = Clock::now();
        for (const auto& due : retryDue) {
            if (due) {
                const auto left = std::chrono::ceil<std::chrono::milliseconds>(*due - now).count();
                timeout = timeout < 0 ? std::max(0L, static_cast<long>(left))
                                      : std::min(timeout, std::max(0L, static_cast<long>(left)));
            }
        }
        if (zmq_poll(items.data(), static_cast<int>(items.size()), timeout) < 0 &&
            zmq_errno() != EINTR) {
            throw zmq::error_t();
        }
        if (items.back().revents != 0) {
            wake.Drain();
        }
        for (std::size_t link = 0; link < monitors.size(); ++link) {
            if (items[link].revents != 0) {
                ReadEvents(link);
            }
        }
        RecreateDroppedLinks();
    }
}

void ConnectionMonitor::ReadEvents(std::size_t link) {
    zmq::message_t event;
    zmq::message_t address;
    // Each event is two frames: 2 bytes of event number and 4 of value, then the address.
    while (monitors[link].recv(event, zmq::recv_flags::dontwait)) {
        if (!event.more() || !monitors[link].recv(address, zmq::recv_flags::dontwait)) {
            continue;
        }
        if (event.size() >= sizeof(std::uint16_t) + sizeof(std::uint32_t)) {
            std::uint16_t number = 0;
            std::uint32_t value = 0;
            std::memcpy(&number, event.data(), sizeof number);
            std::memcpy(&value, static_cast<const char*>(event.data()) + sizeof number,
                        sizeof value);
            Apply(link, number, value);
        }
    }
}

void ConnectionMonitor::Apply(std::size_t link, int event, std::uint32_t value) {
    switch (event) {
        case ZMQ_EVENT_HANDSHAKE_SUCCEEDED:
            everConnected[link] = true;
            handshakeFailing[link] = false;
            retryDue[link].reset();
            Report(link, ConnectionState::Connected);
            break;
        case ZMQ_EVENT_CONNECTED:
        case ZMQ_EVENT_CONNECT_DELAYED:
        case ZMQ_EVENT_CONNECT_RETRIED:
            retryDue[link].reset();  // the transport is trying
            break;
        case ZMQ_EVENT_HANDSHAKE_FAILED_NO_DETAIL:
        case ZMQ_EVENT_HANDSHAKE_FAILED_PROTOCOL:
        case ZMQ_EVENT_HANDSHAKE_FAILED_AUTH:
            LogHandshakeFailure(link, event, value);
            [[fallthrough]];
        case ZMQ_EVENT_DISCONNECTED:
            retryDue[link] = Clock::now() + kRetryGrace;
            Report(link, everConnected[link] ? ConnectionState::Reconnecting
                                             : ConnectionState::Connecting);
            break;
        default:
            break;
    }
}

void ConnectionMonitor::LogHandshakeFailure(std::size_t link, int event, std::uint32_t value) {
    // A failed handshake (a wrong server key, a plain peer on an encrypted link) repeats with
    // every retry, several times a second: say it once at level 50 until a handshake succeeds,
    // and the repeats only at debug level.
    const bool repeated = handshakeFailing[link];
    handshakeFailing[link] = true;
    KORVO_LOG_COMPOSED(
        logger, repeated ? ILogger::Debug : ILogger::Error, [&] {
            const char* kind = event == ZMQ_EVENT_HANDSHAKE_FAILED_AUTH       ? "authentication"
                               : event == ZMQ_EVENT_HANDSHAKE_FAILED_PROTOCOL ? "protocol error"
                                                                              : "no detail";
            return "LogHandshakeFailure: the handshake with " +
                   links[link]->GetEndPoint().Address() + " failed (" + kind + ", " +
                   std::to_string(value) + ")" +
                   (repeated ? " again."
                             : std::string("; nothing passes until it succeeds.") +
                                   (links[link]->GetEndPoint().IsEncrypted()
                                        ? " Check the server's public key."
                                        : ""));
        });
}

void ConnectionMonitor::RecreateDroppedLinks() {
    const Clock::time_point now = Clock::now();
    for (std::size_t link = 0; link < links.size(); ++link) {
        if (!retryDue[link] || *retryDue[link] > now || stopping.load()) {
            continue;
        }
        retryDue[link].reset();
        Report(link, ConnectionState::Disconnected);
        if (reopenFailures[link] == 0) {  // a retry after a failed re-creation is logged below
            KORVO_LOG_COMPOSED(logger, ILogger::Error, [&] {
                return "RecreateDroppedLinks: the transport dropped the link to " +
                       links[link]->GetEndPoint().Address() + "; connecting a new socket.";
            });
        }
        std::optional<zmq::socket_t> monitor;
        try {
            monitor = links[link]->Reopen();
        } catch (const std::exception& error) {
            // The state stays Disconnected, which it is, and the other links are unaffected.
            const auto delay = std::min<std::chrono::milliseconds>(
                kReopenRetry * (1L << std::min(reopenFailures[link], 10)), kReopenRetryMax);
            ++reopenFailures[link];
            retryDue[link] = Clock::now() + delay;
            if (const auto admitted = reopenFailureLog.Admit()) {
                KORVO_LOG_COMPOSED(
                    logger, ILogger::Error, [&] {
                        return "RecreateDroppedLinks: cannot re-create the link to " +
                               links[link]->GetEndPoint().Address() + " (" + error.what() +
                               "); trying again in " + std::to_string(delay.count()) + " ms." +
                               Suppressed(*admitted);
                    });
            }
            continue;
        }
        reopenFailures[link] = 0;
        if (monitor) {
            monitors[link] = std::move(*monitor);
            Report(link, ConnectionState::Reconnecting);
        }
    }
}

void ConnectionMonitor::Report(std::size_t link, ConnectionState state) {
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        const ConnectionState current = states[link].load();
        if (current == state || current == ConnectionState::ShutDown) {
            return;
        }
        if (current == ConnectionState::Connected) {
            losses[link].fetch_add(1);
        }
        states[link].store(state);
    }
    links[link]->NotifyChange();  // a sender may be waiting for the link to come up
    KORVO_LOG_COMPOSED(logger, ILogger::Info, [&] {
        return "Report: " + links[link]->GetEndPoint().Address() + " is " + ToString(state) + ".";
    });
    Tell(link, state);
}

void ConnectionMonitor::Tell(std::size_t link, ConnectionState state) {
    std::lock_guard<std::mutex> lock(listenerMutex);
    if (!listener) {
        return;
    }
    try {
        listener(link, state);
    } catch (const std::exception& error) {
        KORVO_LOG_COMPOSED(logger, ILogger::Error, [&] {
            return std::string("Tell: the connection state handler threw (") + error.what() + ").";
        });
    } catch (...) {
        KORVO_LOG(logger, ILogger::Error, "Tell: the connection state handler threw.");
    }
}

}  // namespace Korvo::Common::Messaging::Detail

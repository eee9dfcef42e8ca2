#include <Korvo/Common/Messaging/Client/Subscription.h>

#include <atomic>
#include <chrono>
#include <stdexcept>

#include <Korvo/Common/Messaging/ObjectShutDownException.h>
#include <Korvo/Plexis/Tessel/Logging/Loggers.h>

#include "logging/LogSupport.h"
#include "messaging/ConnectionMonitor.h"
#include "messaging/Envelope.h"
#include "messaging/Link.h"
#include "messaging/ZmqContext.h"

namespace Korvo::Common::Messaging::Client {
namespace {

using Plexis::Tessel::Logging::ILogger;
using Plexis::Tessel::Logging::LogComposed;

constexpr const char* kSource = "Korvo/Common/Messaging/Client/Subscription";

// Receive wakes at least this often even without news. Shutting down wakes it at once anyway;
// this only bounds the cost of a wake-up that could ever be missed.
constexpr std::chrono::milliseconds kLongestWait{1000};

// The handler as the watching thread calls it: with the endpoint rather than its index.
Detail::ConnectionMonitor::Listener ListenerFor(Subscription::ConnectionStateHandler handler,
                                                const std::vector<EndPoint>& endpoints) {
    if (!handler) {
        return nullptr;
    }
    return [handler = std::move(handler), &endpoints](std::size_t link, ConnectionState state) {
        handler(endpoints[link], state);
    };
}

std::vector<Detail::Link*> Pointers(const std::vector<std::unique_ptr<Detail::Link>>& links) {
    std::vector<Detail::Link*> pointers;
    for (const auto& link : links) {
        pointers.push_back(link.get());
    }
    return pointers;
}

}  // namespace

class Subscription::Impl {
public:
    Impl(const std::vector<EndPoint>& endpoints, const std::vector<std::string>& topics,
         const TransportOptions& options, ConnectionStateHandler handler)
        : endpoints(endpoints),
          logger(Plexis::Tessel::Logging::Loggers::GetInstance().GetLogger("Messaging")),
          context(Detail::SharedZmqContext()),
          links(MakeLinks(topics, options)),
          monitor(Pointers(links), logger, ListenerFor(std::move(handler), this->endpoints)) {}

    std::vector<std::unique_ptr<Detail::Link>> MakeLinks(const std::vector<std::string>& topics,
                                                         const TransportOptions& options) {
        if (endpoints.empty()) {
            throw std::invalid_argument("Subscription: no endpoint to subscribe to.");
        }
        std::vector<std::unique_ptr<Detail::Link>> made;
        for (const EndPoint& endpoint : endpoints) {
            made.push_back(std::make_unique<Detail::Link>(context, zmq::socket_type::sub, endpoint,
                                                          options, topics, wake));
        }
        return made;
    }

    // Takes one message from the first link, starting at `next`, that has one; otherwise
    // registers a wait on every link. Returns the index of the link taken from, or -1.
    long TakeFromAny(Detail::Waits& waits) {
        const std::size_t count = links.size();
        for (std::size_t step = 0; step < count; ++step) {
            const std::size_t index = (next + step) % count;
            int fd = -1;
            if (links[index]->TakeOrWait(frames, fd)) {
                next = (index + 1) % count;  // the others go first next time
                return static_cast<long>(index);
            }
            waits.Add(*links[index], fd);
        }
        return -1;
    }

    const std::vector<EndPoint> endpoints;
    const std::shared_ptr<ILogger> logger;
    const std::shared_ptr<zmq::context_t> context;
    Detail::WakeSignal wake;
    std::vector<std::unique_ptr<Detail::Link>> links;
    Detail::ConnectionMonitor monitor;
    std::atomic<bool> shutDown{false};
    // The receiving thread's.
    Detail::Frames frames;
    Detail::WaitStorage waitStorage;
    std::size_t next = 0;
};

Subscription::Event::Event(std::unique_ptr<Message> message, std::string topic, std::size_t source)
    : message(std::move(message)), topic(std::move(topic)), source(source) {}

Subscription::Subscription(const std::vector<EndPoint>& endpoints,
                           const std::vector<std::string>& topics, const TransportOptions& options,
                           ConnectionStateHandler handler)
    : impl(std::make_unique<Impl>(endpoints, topics, options, std::move(handler))) {}

Subscription::~Subscription() {
    ShutDown();
}

Subscription::Event Subscription::Receive() {
    for (;;) {
        if (impl->shutDown.load()) {
            throw ObjectShutDownException("Receive: subscription shut down.");
        }
        Detail::Waits waits(impl->waitStorage);
        const long source = impl->TakeFromAny(waits);
        if (source < 0) {
            waits.Poll(impl->wake, kLongestWait);
            continue;
        }
        std::string topic;
        std::string problem;
        std::unique_ptr<Message> message =
            Detail::NotificationFromFrames(impl->frames, topic, problem);
        if (message->IsValid()) {
            return Event(std::move(message), std::move(topic), static_cast<std::size_t>(source));
        }
        LogComposed(
            impl->logger, ILogger::Error,
            [&] {
                return "Receive: dropped a malformed notification from " +
                       impl->endpoints[static_cast<std::size_t>(source)].Address() + " (" +
                       problem + ").";
            },
            kSource, __LINE__);
    }
}

bool Subscription::IsShutDown() const {
    return impl->shutDown.load();
}

void Subscription::ShutDown() {
    if (impl->shutDown.exchange(true)) {
        return;
    }
    impl->monitor.ShutDown();
    for (const auto& link : impl->links) {
        link->Close();
    }
}

const std::vector<EndPoint>& Subscription::GetEndPoints() const {
    return impl->endpoints;
}

std::vector<ConnectionState> Subscription::GetConnectionStates() const {
    return impl->monitor.States();
}

void Subscription::SetConnectionStateHandler(ConnectionStateHandler handler) {
    impl->monitor.SetListener(ListenerFor(std::move(handler), impl->endpoints));
}

}  // namespace Korvo::Common::Messaging::Client

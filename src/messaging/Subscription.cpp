#include <Korvo/Common/Messaging/Client/Subscription.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <thread>

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

// The pump wakes at least this often even without news. Shutting down wakes it at once anyway;
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

// The notifications taken off the sockets wait for `Receive` in a queue of the subscription's
// own, which the pump thread fills. The pump keeps the sockets drained, so when the application
// falls behind the notifications that do not fit are refused here, where they are counted and
// logged, rather than piling up in ZeroMQ until the publisher drops them unseen.
class Subscription::Impl {
public:
    Impl(const std::vector<EndPoint>& endpoints, const std::vector<std::string>& topics,
         const TransportOptions& options, ConnectionStateHandler handler)
        : endpoints(endpoints),
          logger(Plexis::Tessel::Logging::Loggers::GetInstance().GetLogger("Messaging")),
          context(Detail::SharedZmqContext()),
          links(MakeLinks(topics, options)),
          monitor(Pointers(links), logger, ListenerFor(std::move(handler), this->endpoints)),
          queueLimit(options.receiveHighWaterMark > 0
                         ? static_cast<std::size_t>(options.receiveHighWaterMark)
                         : 0) {
        pump = std::thread(&Impl::Pump, this);
    }

    ~Impl() {
        if (pump.joinable()) {
            pump.join();
        }
    }

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

    // The pump thread's body: moves every well-formed notification into the queue until the
    // links close. A failure of a socket is kept for `Receive` to throw.
    void Pump() {
        try {
            Detail::WaitStorage waitStorage;  // kept across passes: waiting allocates nothing
            for (;;) {
                Detail::Waits waits(waitStorage);
                const long source = TakeFromAny(waits);
                if (source < 0) {
                    waits.Poll(wake, kLongestWait);
                    continue;
                }
                std::string topic;
                std::string problem;
                std::unique_ptr<Message> message =
                    Detail::NotificationFromFrames(frames, topic, problem);
                if (!message->IsValid()) {
                    LogComposed(
                        logger, ILogger::Error,
                        [&] {
                            return "Receive: dropped a malformed notification from " +
                                   endpoints[static_cast<std::size_t>(source)].Address() + " (" +
                                   problem + ").";
                        },
                        kSource, __LINE__);
                    continue;
                }
                Offer(Event(std::move(message), std::move(topic),
                            static_cast<std::size_t>(source)));
            }
        } catch (const ObjectShutDownException&) {
            // The links closed: the subscription is shutting down.
        } catch (...) {
            std::lock_guard<std::mutex> lock(queueMutex);
            pumpFailure = std::current_exception();
        }
        {
            std::lock_guard<std::mutex> lock(queueMutex);
            pumpEnded = true;
        }
        queueChanged.notify_all();
    }

    // Queues `event`, or refuses it when the queue is full. The first refusal of a run is logged
    // at once; `Take` logs the run's count when the application has made room again.
    void Offer(Event event) {
        std::uint64_t total = 0;
        {
            std::unique_lock<std::mutex> lock(queueMutex);
            if (queueLimit == 0 || queue.size() < queueLimit) {
                queue.push_back(std::move(event));
                lock.unlock();
                queueChanged.notify_one();  // after unlocking: the taker does not block on it
                return;
            }
            total = dropped.fetch_add(1) + 1;
            if (droppedInRun++ > 0) {
                return;
            }
        }
        LogComposed(
            logger, ILogger::Error,
            [&] {
                return "Receive: " + std::to_string(queueLimit) +
                       " notifications already wait for the application; dropping what arrives "
                       "until it catches up (" +
                       std::to_string(total) + " dropped so far).";
            },
            kSource, __LINE__);
    }

    // The oldest queued notification, waiting for one. Throws `ObjectShutDownException` once shut
    // down, and what failed the pump once it has ended and the queue is empty.
    Event Take() {
        std::unique_lock<std::mutex> lock(queueMutex);
        queueChanged.wait(lock, [&] { return !queue.empty() || shutDown.load() || pumpEnded; });
        if (shutDown.load()) {
            throw ObjectShutDownException("Receive: subscription shut down.");
        }
        if (queue.empty()) {
            if (pumpFailure) {
                std::rethrow_exception(pumpFailure);
            }
            throw ObjectShutDownException("Receive: subscription shut down.");
        }
        Event event = std::move(queue.front());
        queue.pop_front();
        const std::uint64_t run = droppedInRun;
        droppedInRun = 0;
        lock.unlock();
        if (run > 0) {
            LogComposed(
                logger, ILogger::Error,
                [&] {
                    return "Receive: the application caught up after " + std::to_string(run) +
                           " notifications were dropped.";
                },
                kSource, __LINE__);
        }
        return event;
    }

    // Wakes `Take` once `shutDown` is set.
    void WakeTaker() {
        { std::lock_guard<std::mutex> lock(queueMutex); }
        queueChanged.notify_all();
    }

    const std::vector<EndPoint> endpoints;
    const std::shared_ptr<ILogger> logger;
    const std::shared_ptr<zmq::context_t> context;
    Detail::WakeSignal wake;
    std::vector<std::unique_ptr<Detail::Link>> links;
    Detail::ConnectionMonitor monitor;
    std::atomic<bool> shutDown{false};
    std::atomic<std::uint64_t> dropped{0};

    const std::size_t queueLimit;  // 0: no limit
    std::mutex queueMutex;         // a leaf: nothing else is locked while it is held
    std::condition_variable queueChanged;
    std::deque<Event> queue;
    std::uint64_t droppedInRun = 0;  // refused since `Take` last took one
    bool pumpEnded = false;
    std::exception_ptr pumpFailure;

    // The pump thread's.
    Detail::Frames frames;
    std::size_t next = 0;
    std::thread pump;  // started last, joined by the destructor after the links have closed
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
    return impl->Take();
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
        link->Close();  // ends the pump's wait; it then ends too
    }
    impl->WakeTaker();
}

std::uint64_t Subscription::GetDroppedCount() const {
    return impl->dropped.load();
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

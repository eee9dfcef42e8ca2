#include <Korvo/Common/Messaging/Client/Subscription.h>

#include <algorithm>
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
#include <Korvo/Common/Messaging/TransportException.h>
#include <Korvo/Plexis/Tessel/Logging/Loggers.h>

#include <Korvo/Plexis/Tessel/Logging/Log.h>
#include <Korvo/Plexis/Tessel/Logging/RateLimit.h>
#include "messaging/ConnectionMonitor.h"
#include "messaging/Envelope.h"
#include "messaging/FaultInjection.h"
#include "messaging/Link.h"
#include "messaging/ZmqContext.h"

namespace Korvo::Common::Messaging::Client {
namespace {

using Plexis::Tessel::Logging::ILogger;
using Plexis::Tessel::Logging::Suppressed;

constexpr const char* kSource = "Korvo/Common/Messaging/Client/Subscription";

// The pump wakes at least this often even without news. Shutting down wakes it at once anyway;
// this only bounds the cost of a wake-up that could ever be missed.
constexpr std::chrono::milliseconds kLongestWait{1000};

// After a failure the pump (or the one link that failed) rests this long before trying again,
// doubling with each failure in a row up to kRetryMax: a fault that clears is noticed within
// half a second, one that persists costs a few attempts a second.
constexpr std::chrono::milliseconds kRetry{20};
constexpr std::chrono::milliseconds kRetryMax{500};

// What a queued notification costs beyond its bytes: the event, the message, the frame.
constexpr std::size_t kBookkeeping = 256;

// ZeroMQ's queue of one socket never holds more messages than this, however large the budget.
constexpr std::size_t kMostSocketQueue = 100000;

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
//
// The pump ends only when the subscription shuts down. A failure of one link is retried on that
// link alone, after a back-off, while the others go on; a failure of the pump as a whole (memory
// running out, a failed poll) is retried after a back-off too. Each failure is logged at a
// limited rate and handed to `Receive`, which throws it once when nothing is waiting.
class Subscription::Impl {
public:
    using Clock = std::chrono::steady_clock;

    Impl(const std::vector<EndPoint>& endpoints, const std::vector<std::string>& topics,
         const TransportOptions& options, ConnectionStateHandler handler)
        : endpoints(endpoints),
          logger(Plexis::Tessel::Logging::Loggers::GetInstance().GetLogger("Messaging")),
          context(Detail::SharedZmqContext()),
          links(MakeLinks(topics, SocketOptions(options))),
          monitor(Pointers(links), logger, ListenerFor(std::move(handler), this->endpoints)),
          queueBudget(options.notificationQueueBytes),
          linkRetries(links.size()) {
        pump = std::thread(&Impl::Pump, this);
    }

    ~Impl() {
        if (pump.joinable()) {
            pump.join();
        }
    }

    // ZeroMQ counts messages, not bytes: its queue of a subscription socket gets as many messages
    // of the largest size as fit in the byte budget, so that it holds no more than our own queue.
    static TransportOptions SocketOptions(TransportOptions options) {
        options.maxMessageSize = std::max<std::int64_t>(options.maxNotificationSize, 1);
        const std::size_t fitting = std::max<std::size_t>(
            options.notificationQueueBytes / static_cast<std::size_t>(options.maxMessageSize), 1);
        options.receiveHighWaterMark = static_cast<int>(std::min(fitting, kMostSocketQueue));
        return options;
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

    // Takes one message from the first usable link, starting at `next`, that has one; otherwise
    // registers a wait on every usable link. Returns the index of the link taken from, or -1;
    // `until` is lowered to when a link that is resting after a failure may be tried again.
    long TakeFromAny(Detail::Waits& waits, Clock::time_point& until) {
        const std::size_t count = links.size();
        const Clock::time_point now = Clock::now();
        for (std::size_t step = 0; step < count; ++step) {
            const std::size_t index = (next + step) % count;
            LinkRetry& retry = linkRetries[index];
            if (retry.failures > 0 && retry.due > now) {
                until = std::min(until, retry.due);
                continue;
            }
            int fd = -1;
            bool took = false;
            try {
                Detail::InjectFault(Detail::FaultPoint::TakeFromLink, endpoints[index].Address());
                took = links[index]->TakeOrWait(frames, fd);
            } catch (const ObjectShutDownException&) {
                throw;  // closed: the subscription is shutting down
            } catch (const std::exception& error) {
                LinkFailed(index, error.what());
                until = std::min(until, retry.due);
                continue;
            }
            if (retry.failures > 0) {
                LinkRecovered(index);
            }
            if (took) {
                next = (index + 1) % count;  // the others go first next time
                return static_cast<long>(index);
            }
            waits.Add(*links[index], fd);
        }
        return -1;
    }

    void LinkFailed(std::size_t index, const std::string& what) {
        LinkRetry& retry = linkRetries[index];
        const auto delay = BackOff(retry.failures++);
        retry.due = Clock::now() + delay;
        Failed("cannot receive from " + endpoints[index].Address() + " (" + what + ")", delay);
    }

    void LinkRecovered(std::size_t index) {
        linkRetries[index].failures = 0;
        KORVO_LOG_COMPOSED(logger, ILogger::Info, [&] {
            return "Pump: receiving from " + endpoints[index].Address() + " again.";
        });
    }

    // Logs a failure at a limited rate and keeps it for `Receive`.
    void Failed(const std::string& what, std::chrono::milliseconds retryIn) {
        if (const auto admitted = failureLog.Admit()) {
            KORVO_LOG_COMPOSED(logger, ILogger::Error, [&] {
                return "Pump: " + what + "; trying again in " + std::to_string(retryIn.count()) +
                       " ms." + Suppressed(*admitted);
            });
        }
        {
            std::lock_guard<std::mutex> lock(queueMutex);
            pendingFailure = "Receive: " + what + ".";
        }
        queueChanged.notify_all();
    }

    // One pass: takes one notification and queues it, or waits for input.
    void PumpOnce(Detail::WaitStorage& waitStorage) {
        Detail::Waits waits(waitStorage);
        Clock::time_point until = Clock::now() + kLongestWait;
        const long source = TakeFromAny(waits, until);
        if (source < 0) {
            Detail::InjectFault(Detail::FaultPoint::PumpWait, std::string());
            waits.Poll(wake, std::chrono::ceil<std::chrono::milliseconds>(
                                 std::max(until - Clock::now(), Clock::duration::zero())));
            return;
        }
        holding = true;  // from here until queued, a failure loses this notification
        std::string topic;
        std::string problem;
        std::unique_ptr<Message> message = Detail::NotificationFromFrames(frames, topic, problem);
        if (!message->IsValid()) {
            holding = false;
            dropped.fetch_add(1);
            if (const auto admitted = malformedLog.Admit()) {
                KORVO_LOG_COMPOSED(
                    logger, ILogger::Error, [&] {
                        return "Receive: dropped a malformed notification from " +
                               endpoints[static_cast<std::size_t>(source)].Address() + " (" +
                               problem + ")." + Suppressed(*admitted);
                    });
            }
            return;
        }
        Detail::InjectFault(Detail::FaultPoint::PumpQueue,
                            endpoints[static_cast<std::size_t>(source)].Address());
        Offer(Event(std::move(message), std::move(topic), static_cast<std::size_t>(source)));
        holding = false;
    }

    // The pump thread's body: moves every well-formed notification into the queue until the
    // subscription shuts down.
    void Pump() {
        Detail::WaitStorage waitStorage;  // kept across passes: waiting allocates nothing
        int failures = 0;                 // of the pump as a whole, in a row
        while (!shutDown.load()) {
            try {
                PumpOnce(waitStorage);
                failures = 0;
            } catch (const ObjectShutDownException&) {
                break;  // the links closed: the subscription is shutting down
            } catch (const std::exception& error) {
                PumpFailed(error.what(), failures++);
            } catch (...) {
                PumpFailed("unknown exception", failures++);
            }
        }
    }

    void PumpFailed(const char* what, int failuresBefore) {
        if (holding) {
            holding = false;
            dropped.fetch_add(1);  // the notification in hand is lost
        }
        frames.count = 0;
        if (shutDown.load()) {
            return;
        }
        const auto delay = BackOff(failuresBefore);
        Failed(std::string("notifications cannot be received (") + what + ")", delay);
        std::unique_lock<std::mutex> lock(queueMutex);
        queueChanged.wait_for(lock, delay, [&] { return shutDown.load(); });
    }

    // Queues `event`, or refuses it when the queue has no room. The first refusal of a run is
    // logged at once; `Take` logs the run's count when the application has emptied the queue.
    void Offer(Event event) {
        const std::size_t cost = CostOf(event);
        std::uint64_t total = 0;
        {
            std::unique_lock<std::mutex> lock(queueMutex);
            if (queue.empty() || queuedBytes + cost <= queueBudget) {
                queue.push_back(Queued{std::move(event), cost});
                queuedBytes += cost;
                lock.unlock();
                queueChanged.notify_one();  // after unlocking: the taker does not block on it
                return;
            }
            total = dropped.fetch_add(1) + 1;
            if (droppedInRun++ > 0) {
                return;
            }
        }
        if (const auto admitted = dropStartLog.Admit()) {
            KORVO_LOG_COMPOSED(
                logger, ILogger::Error, [&] {
                    return "Receive: the notifications waiting for the application fill its " +
                           std::to_string(queueBudget) +
                           " bytes; dropping what arrives until it catches up (" +
                           std::to_string(total) + " dropped so far)." + Suppressed(*admitted);
                });
        }
    }

    static std::size_t CostOf(const Event& event) {
        return kBookkeeping + event.Payload().DataSize() + event.Payload().GetHeader().size() +
               event.Topic().size();
    }

    // The oldest queued notification, waiting for one. Throws `ObjectShutDownException` once shut
    // down, and a failure of the pump, once, when nothing waits.
    Event Take() {
        std::unique_lock<std::mutex> lock(queueMutex);
        queueChanged.wait(lock, [&] {
            return !queue.empty() || shutDown.load() || !pendingFailure.empty();
        });
        if (shutDown.load()) {
            throw ObjectShutDownException("Receive: subscription shut down.");
        }
        if (queue.empty()) {
            const std::string failure = std::move(pendingFailure);
            pendingFailure.clear();
            throw TransportException(failure);
        }
        Event event = std::move(queue.front().event);
        queuedBytes -= queue.front().cost;
        queue.pop_front();
        std::uint64_t run = 0;
        if (queue.empty()) {  // the application has caught up: nothing waits any more
            run = droppedInRun;
            droppedInRun = 0;
        }
        lock.unlock();
        if (run > 0) {
            if (const auto admitted = caughtUpLog.Admit()) {
                KORVO_LOG_COMPOSED(logger, ILogger::Error, [&] {
                    return "Receive: the application caught up after " + std::to_string(run) +
                           " notifications were dropped." + Suppressed(*admitted);
                });
            }
        }
        return event;
    }

    // Wakes `Take`, and the pump resting after a failure, once `shutDown` is set.
    void WakeTaker() {
        { std::lock_guard<std::mutex> lock(queueMutex); }
        queueChanged.notify_all();
    }

    static std::chrono::milliseconds BackOff(int failuresBefore) {
        return std::min<std::chrono::milliseconds>(kRetry * (1L << std::min(failuresBefore, 10)),
                                                   kRetryMax);
    }

    struct Queued {
        Event event;
        std::size_t cost;
    };

    struct LinkRetry {
        int failures = 0;  // in a row
        Clock::time_point due;
    };

    const std::vector<EndPoint> endpoints;
    const std::shared_ptr<ILogger> logger;
    const std::shared_ptr<zmq::context_t> context;
    Detail::WakeSignal wake;
    std::vector<std::unique_ptr<Detail::Link>> links;
    Detail::ConnectionMonitor monitor;
    std::atomic<bool> shutDown{false};
    std::atomic<std::uint64_t> dropped{0};

    const std::size_t queueBudget;
    std::mutex queueMutex;  // a leaf: nothing else is locked while it is held
    std::condition_variable queueChanged;
    std::deque<Queued> queue;
    std::size_t queuedBytes = 0;
    std::uint64_t droppedInRun = 0;  // refused since the queue was last empty
    std::string pendingFailure;      // for `Receive` to throw; empty when none

    Plexis::Tessel::Logging::RateLimit dropStartLog;
    Plexis::Tessel::Logging::RateLimit caughtUpLog;
    Plexis::Tessel::Logging::RateLimit malformedLog;
    Plexis::Tessel::Logging::RateLimit failureLog;

    // The pump thread's.
    Detail::Frames frames;
    std::size_t next = 0;
    std::vector<LinkRetry> linkRetries;
    bool holding = false;  // a notification has been taken off a socket and is not queued yet
    std::thread pump;      // started last, joined by the destructor after the links have closed
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

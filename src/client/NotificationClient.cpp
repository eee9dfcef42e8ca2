#include <Korvo/Plexis/Tessel/Client/NotificationClient.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <system_error>
#include <thread>

#include <Korvo/Common/Messaging/ObjectShutDownException.h>
#include <Korvo/Common/Messaging/TransportException.h>
#include <Korvo/Plexis/Tessel/Logging/Loggers.h>

#include "client/NotificationDispatch.h"
#include <Korvo/Plexis/Tessel/Logging/Log.h>
#include <Korvo/Plexis/Tessel/Logging/RateLimit.h>
#include "logging/LogText.h"

namespace Korvo::Plexis::Tessel::Client {
namespace {

using Common::Messaging::Message;
using Logging::ILogger;
using Logging::Suppressed;

constexpr const char* kSource = "Korvo/Plexis/Tessel/Client/NotificationClient";

// After a failure to receive, the loop waits this long before it receives again, doubling with
// each failure in a row up to kRetryMax.
constexpr std::chrono::milliseconds kRetry{10};
constexpr std::chrono::milliseconds kRetryMax{1000};

}  // namespace

struct NotificationClient::Loop {
    Loop(const std::vector<Common::Messaging::EndPoint>& endPoints,
         const std::vector<std::string>& topics, const Common::Messaging::TransportOptions& options)
        : subscription(
              std::make_unique<Common::Messaging::Client::Subscription>(endPoints, topics, options)),
          logger(Logging::Loggers::GetInstance().GetLogger("NotificationClient")) {}

    std::unique_ptr<Common::Messaging::Client::Subscription> subscription;
    std::shared_ptr<ILogger> logger;
    std::mutex handlersMutex;
    std::atomic<std::thread::id> thread{};

    // Set when a callback destroyed the client: its lists then live on in `orphans` until that
    // callback has returned, and the loop touches them no more.
    std::atomic<bool> abandoned{false};
    std::unique_ptr<NotificationHandlers> orphans;

    // Cuts the loop's wait after a failure short when the client is destroyed.
    std::mutex waitMutex;
    std::condition_variable wakeUp;
    bool stopping = false;

    Logging::RateLimit unknownLog;
    Logging::RateLimit exceptionLog;
};

NotificationClient::NotificationClient(const std::vector<Common::Messaging::EndPoint>& endPoints,
                                       const std::vector<std::string>& topics,
                                       const Common::Messaging::TransportOptions& options)
    : loop(std::make_shared<Loop>(endPoints, topics, options)) {
    worker = std::async(std::launch::async, &NotificationClient::Run, this);
}

NotificationClient::~NotificationClient() {
    {
        std::lock_guard<std::mutex> lock(loop->waitMutex);
        loop->stopping = true;
    }
    loop->wakeUp.notify_all();
    loop->subscription->ShutDown();
    if (!worker.valid()) {
        return;
    }
    if (loop->thread.load() != std::this_thread::get_id()) {
        worker.wait();
        return;
    }
    // Destroyed by one of its own callbacks, on the receiving thread, which cannot wait for
    // itself. The lists move out of the dying object with their storage, so the running callback
    // and the loop's place in its list stay valid; the loop sees `abandoned` when the callback
    // returns and ends, as the subscription is shut down. Another thread waits for it to end,
    // which joins it, then releases what it used.
    loop->orphans =
        std::make_unique<NotificationHandlers>(std::move(static_cast<NotificationHandlers&>(*this)));
    loop->abandoned.store(true);
    auto ending = std::make_shared<std::future<void>>(std::move(worker));
    try {
        std::thread([ending, state = loop] { ending->wait(); }).detach();
    } catch (const std::system_error&) {
        // No thread to be had: leave the future behind rather than join this thread to itself.
        new std::shared_ptr<std::future<void>>(std::move(ending));
    }
}

std::unique_lock<std::mutex> NotificationClient::LockHandlers() {
    return std::unique_lock<std::mutex>(loop->handlersMutex);
}

Common::Messaging::Client::Subscription& NotificationClient::GetSubscription() {
    return *loop->subscription;
}

void NotificationClient::Run() {
    // A callback may destroy the client: from then on only `state` is used, never `this`.
    const std::shared_ptr<Loop> state = loop;
    state->thread.store(std::this_thread::get_id());
    const Detail::NotificationDispatch dispatch(&state->abandoned);
    const auto logException = [&state](const char* what) {
        if (const auto admitted = state->exceptionLog.Admit()) {
            Logging::LogComposed(
                state->logger, ILogger::Error,
                [&] {
                    return "Run: Exception (" + Logging::Printable(what) + ")." + Suppressed(*admitted);
                },
                kSource, 162);
        }
    };
    int failures = 0;  // to receive, in a row
    while (!state->subscription->IsShutDown()) {
        try {
            const auto event = state->subscription->Receive();
            failures = 0;
            const Message& message = event.Payload();
            std::lock_guard<std::mutex> lock(state->handlersMutex);
            if (!dispatch(*this, message)) {
                if (const auto admitted = state->unknownLog.Admit()) {
                    // The text names the last table searched, whatever the unknown type.
                    Logging::LogComposed(
                        state->logger, ILogger::Error,
                        [&] {
                            return "Run: serverStatusMessageTypes unknown." +
                                   Suppressed(*admitted);
                        },
                        kSource, 154);
                }
            }
        } catch (const Common::Messaging::ObjectShutDownException& error) {
            Logging::LogComposed(
                state->logger, ILogger::Trace,
                [&] {
                    return std::string("Run: Object shutDown exception (") + error.what() + ").";
                },
                kSource, 158);
            return;
        } catch (const Common::Messaging::TransportException& error) {
            logException(error.what());
            // Receiving is retried, but never in a tight loop: a fault that persists costs a
            // receive a second at most.
            const auto delay = std::min<std::chrono::milliseconds>(
                kRetry * (1L << std::min(failures++, 10)), kRetryMax);
            std::unique_lock<std::mutex> lock(state->waitMutex);
            state->wakeUp.wait_for(lock, delay, [&] { return state->stopping; });
        } catch (const std::exception& error) {
            logException(error.what());
        } catch (...) {
            if (const auto admitted = state->exceptionLog.Admit()) {
                Logging::LogComposed(
                    state->logger, ILogger::Error,
                    [&] { return "Run: Exception unknown." + Suppressed(*admitted); }, kSource,
                    165);
            }
        }
    }
}

}  // namespace Korvo::Plexis::Tessel::Client

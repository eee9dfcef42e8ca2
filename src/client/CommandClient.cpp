#include <Korvo/Plexis/Tessel/Client/CommandClient.h>

#include <time.h>

#include <chrono>
#include <string>

#include <Korvo/Common/Messaging/ObjectShutDownException.h>
#include <Korvo/Common/Messaging/TransportException.h>
#include <Korvo/Plexis/Tessel/Logging/Loggers.h>

#include "client/ReplyIdentity.h"
#include <Korvo/Plexis/Tessel/Logging/Log.h>
#include <Korvo/Plexis/Tessel/Logging/RateLimit.h>

namespace Korvo::Plexis::Tessel::Client {
namespace {

using Common::Messaging::ObjectShutDownException;
using Common::Messaging::TransportException;
using Logging::ILogger;
using Logging::LogComposed;
using Logging::RateLimit;
using Logging::Suppressed;

constexpr const char* kSource = "Korvo/Plexis/Tessel/Client/CommandClient";

// The client whose reception thread is the current thread, if any: lets Stop, run by the
// reception thread after a transport failure, skip joining itself.
thread_local const CommandClient* receptionOwner = nullptr;

// The log text for the messenger failure being handled; call only inside a catch block of a
// std::exception. `operation` is "Request" or "ProcessReception".
std::string DescribeMessengerFailure(const char* operation) {
    try {
        throw;
    } catch (const ObjectShutDownException&) {
        return std::string(operation) + ": internal Messenger shut down.";
    } catch (const TransportException& error) {
        return std::string(operation) + ": internal Messenger error (" + error.what() + ").";
    } catch (const std::exception& error) {
        return std::string(operation) + ": unknown error (" + error.what() + ").";
    }
}

// The warning of Stop and Pause about requests they cancelled; `operation` is "Stop" or "Pause".
void LogAbandoned(const std::shared_ptr<ILogger>& logger, const char* operation,
                  std::size_t abandoned, int line) {
    if (abandoned == 0) {
        return;
    }
    LogComposed(
        logger, ILogger::Warning,
        [&] {
            return std::string(operation) + " called with " + std::to_string(abandoned) +
                   " requests were still waiting for a response.";
        },
        kSource, line);
}

// An empty receive costs the reception loop at least 10 ms, which bounds how often an idle loop
// turns. A messenger that waited for a reply before giving up (the ZeroMQ messenger waits up to
// its `receiveWait`) has already spent that time, so only what is left of the 10 ms is slept:
// a reply that arrives just after such a wait is taken at once instead of up to 10 ms later.
constexpr std::chrono::nanoseconds kIdleInterval{10'000'000};

void SleepAfterEmptyReceive(std::chrono::steady_clock::time_point receiveStarted) {
    const auto left = kIdleInterval - (std::chrono::steady_clock::now() - receiveStarted);
    if (left <= std::chrono::nanoseconds::zero()) {
        return;
    }
    const timespec interval{0, static_cast<long>(left.count())};
    nanosleep(&interval, nullptr);
}

}  // namespace

struct CommandClient::Drops {
    std::atomic<std::uint64_t> unanswerable{0};
    std::atomic<std::uint64_t> misaddressed{0};
    std::atomic<std::uint64_t> overBudget{0};
    RateLimit linkLossLog;
    RateLimit misaddressedLog;
    RateLimit overBudgetLog;
};

CommandClient::CommandClient(std::unique_ptr<BaseClientMessenger> messenger,
                             std::shared_ptr<CommandParamsPayloadBuilder> payloadBuilder,
                             std::shared_ptr<CommandReplyBuilder> replyBuilder)
    : CommandClient(std::move(messenger), std::move(payloadBuilder), std::move(replyBuilder),
                    Limits{}) {}

CommandClient::CommandClient(std::unique_ptr<BaseClientMessenger> messenger,
                             std::shared_ptr<CommandParamsPayloadBuilder> payloadBuilder,
                             std::shared_ptr<CommandReplyBuilder> replyBuilder,
                             const Limits& limits)
    : messenger(std::move(messenger)),
      payloadBuilder(std::move(payloadBuilder)),
      replyBuilder(std::move(replyBuilder)),
      logger(Logging::Loggers::GetInstance().GetLogger("CommandClient")),
      requestMap(std::make_shared<RequestMap>()),
      limits(limits),
      drops(std::make_unique<Drops>()) {
    linkLossesSeen = this->messenger->GetLinkLosses();
    StartReceptionThread();
    KORVO_LOG(logger, ILogger::Info, "Started.");
}

CommandClient::~CommandClient() {
    try {
        Stop();
    } catch (...) {
        // A messenger whose ShutDown throws must not end the process from a destructor.
    }
    if (receptionThread.joinable()) {
        requestMap->active.exchange(false);
        if (receptionOwner == this) {
            receptionThread.detach();
        } else {
            receptionThread.join();
        }
    }
}

void CommandClient::StartReceptionThread() {
    receptionThread = std::thread(&CommandClient::ProcessReception, this);
}

void CommandClient::JoinReceptionThread() {
    if (receptionThread.joinable() && receptionOwner != this) {
        receptionThread.join();
    }
}

std::unique_ptr<PendingCommandReply> CommandClient::Request(
    const std::string& commandName, const HighLevelOperations::Commands::CommandParams& params) {
    return Request(commandName, params, nullptr);
}

std::unique_ptr<PendingCommandReply> CommandClient::Request(
    const std::string& commandName, const HighLevelOperations::Commands::CommandParams& params,
    std::shared_ptr<ReplyListener> listener) {
    if (!requestMap || !requestMap->active.load()) {
        return nullptr;
    }
    // Whatever the builder throws reaches the caller; no ticket has been taken yet.
    std::unique_ptr<Common::Serialization::Buffer> payload =
        payloadBuilder->BuildPayload(commandName, params);
    if (!payload) {
        KORVO_LOG(logger, ILogger::Error, "Request: failed to build command payload.");
        return nullptr;
    }

    auto replies = std::make_shared<ReplyQueue>(params.commandGuid.GetValue(),
                                                messenger->GetLinkLosses(), std::move(listener));
    int requestId = 0;
    // Registered and sent within one admission: Pause(true) and Stop wait for it, so no command
    // goes out once they have returned, and every registered request is theirs to cancel.
    if (!requestMap->BeginSend(replies, requestId)) {
        return nullptr;
    }
    bool sent = false;
    std::string failure;
    try {
        sent = messenger->TrySend(requestId, commandName, *payload);
    } catch (const std::exception&) {
        failure = DescribeMessengerFailure("Request");
    } catch (...) {
        requestMap->Forget(requestId, replies);
        requestMap->EndSend();
        throw;
    }
    if (!failure.empty()) {
        requestMap->Forget(requestId, replies);
        requestMap->EndSend();
        KORVO_LOG(logger, ILogger::Fatal, failure.c_str());
        Stop();
        return nullptr;
    }
    if (!sent) {
        requestMap->Forget(requestId, replies);
        replies->End(ReplyQueue::Ending::NotSent);
    }
    requestMap->EndSend();
    return std::make_unique<PendingCommandReply>(replyBuilder, requestMap, requestId,
                                                 std::move(replies));
}

void CommandClient::ProcessReception() {
    receptionOwner = this;
    // Under a stream of replies that never pauses, lost links are still looked for this often.
    constexpr std::chrono::milliseconds kLossCheckInterval{100};
    auto lossCheck = std::chrono::steady_clock::now();
    std::string failure;
    try {
        while (requestMap && requestMap->active.load()) {
            const auto receiveStarted = std::chrono::steady_clock::now();
            std::unique_ptr<BaseMessage> message = messenger->Receive();
            if (!message || !message->IsValid()) {
                // Whatever the lost link carried has been taken by now.
                EndRequestsOfLostLinks();
                SleepAfterEmptyReceive(receiveStarted);
                continue;
            }
            Deliver(std::move(message));
            if (std::chrono::steady_clock::now() - lossCheck >= kLossCheckInterval) {
                lossCheck = std::chrono::steady_clock::now();
                EndRequestsOfLostLinks();
            }
        }
    } catch (const ObjectShutDownException&) {
        // Stop shuts the messenger down while this thread may be inside Receive; only a shut-down
        // that nobody asked for is a failure.
        if (requestMap->active.load()) {
            failure = DescribeMessengerFailure("ProcessReception");
        }
    } catch (const std::exception&) {
        failure = DescribeMessengerFailure("ProcessReception");
    }
    if (!failure.empty()) {
        KORVO_LOG(logger, ILogger::Fatal, failure.c_str());
        Stop();
    }
    KORVO_LOG(logger, ILogger::Info, "ProcessReception: stopped.");
    receptionOwner = nullptr;
}

void CommandClient::EndRequestsOfLostLinks() {
    const std::uint64_t losses = messenger->GetLinkLosses();
    if (losses == linkLossesSeen) {
        return;
    }
    linkLossesSeen = losses;
    const std::size_t ended = requestMap->EndSentBefore(losses);
    if (ended == 0) {
        return;
    }
    if (const auto admitted = drops->linkLossLog.Admit()) {
        KORVO_LOG_COMPOSED(logger, ILogger::Warning, [&] {
            return "ProcessReception: the link to the server was lost; " + std::to_string(ended) +
                   " requests sent on it ended unanswered." + Suppressed(*admitted);
        });
    }
}

void CommandClient::Deliver(std::unique_ptr<BaseMessage> message) {
    const int ticket = message->GetOrigin().GetTicket();
    const bool partial = IsPartialReplyHeader(message->GetHeader());
    // Read before the map's lock is taken: it walks the reply's bytes.
    const std::optional<std::string> carried = Detail::CarriedCommandGuid(*message);
    const std::size_t charge = ReplyQueue::Charge(*message);
    std::shared_ptr<ReplyQueue> replies;
    bool misaddressed = false;
    bool overflowed = false;
    {
        std::lock_guard<std::recursive_mutex> lock(requestMap->mutex);
        auto found = requestMap->requests.find(ticket);
        if (found == requestMap->requests.end() || (partial && found->second->IsClosed())) {
            // Answers a request that ended, was abandoned or never made.
            drops->unanswerable.fetch_add(1);
            return;
        }
        misaddressed = carried && *carried != found->second->CommandGuid();
        if (!misaddressed) {
            const std::size_t waiting = found->second->waitingBytes.load();
            overflowed = waiting > 0 && waiting + charge > limits.waitingReplyBytes;
            if (!partial || overflowed) {
                found->second->Close();
                replies = std::move(found->second);
                requestMap->requests.erase(found);
            } else {
                replies = found->second;
            }
        }
    }
    if (misaddressed) {
        // The request keeps waiting: its own reply may still come.
        drops->misaddressed.fetch_add(1);
        if (const auto admitted = drops->misaddressedLog.Admit()) {
            KORVO_LOG_COMPOSED(
                logger, ILogger::Warning, [&] {
                    return "Deliver: dropped a reply for ticket " + std::to_string(ticket) +
                           " naming another command than the one sent under it." +
                           Suppressed(*admitted);
                });
        }
        return;
    }
    if (overflowed) {
        drops->overBudget.fetch_add(1 + replies->Size());
        replies->Discard();
        if (const auto admitted = drops->overBudgetLog.Admit()) {
            KORVO_LOG_COMPOSED(
                logger, ILogger::Warning, [&] {
                    return "Deliver: the replies waiting for ticket " + std::to_string(ticket) +
                           " reached " + std::to_string(limits.waitingReplyBytes) +
                           " bytes; the request ends and its replies are dropped." +
                           Suppressed(*admitted);
                });
        }
        return;
    }
    // Queued after the map's lock is released, so that the woken caller's next request, which
    // registers under that lock, never waits for this thread. A final reply's queue is already
    // out of the map and closed, so a cancellation in between leaves it alone; a partial reply may
    // then land behind the end mark, where nobody reads it. Only this thread queues replies, so
    // their order is kept.
    replies->waitingBytes.fetch_add(charge);
    replies->Deliver(std::move(message));
}

void CommandClient::Pause(bool pause) {
    if (!pause) {
        if (requestMap->active.load() || messenger->IsShutDown()) {
            return;
        }
        JoinReceptionThread();  // already ended: it left its loop when `active` went false
        requestMap->active.exchange(true);
        StartReceptionThread();
        return;
    }
    if (!requestMap->active.load()) {
        return;
    }
    LogAbandoned(logger, "Pause", requestMap->CancelPending(), __LINE__);
    JoinReceptionThread();
}

void CommandClient::Stop() {
    std::size_t abandoned = 0;
    bool alreadyShutDown = false;
    bool wasPaused = false;
    {
        std::lock_guard<std::mutex> lock(stopMutex);
        alreadyShutDown = messenger->IsShutDown();
        wasPaused = !requestMap->active.load();
        // Every waiter is released whatever state the messenger is in: it may have been shut
        // down from outside, with requests still pending.
        abandoned = requestMap->CancelPending();
        if (!alreadyShutDown) {
            messenger->ShutDown();
        }
    }
    if (alreadyShutDown) {
        JoinReceptionThread();  // a second Stop: nothing to log
        return;
    }
    if (!wasPaused) {
        LogAbandoned(logger, "Stop", abandoned, __LINE__);
        JoinReceptionThread();
    }
    KORVO_LOG(logger, ILogger::Info, "Shut down.");
}

Common::Messaging::ConnectionState CommandClient::GetConnectionState() const {
    return messenger->GetConnectionState();
}

CommandClient::DroppedReplies CommandClient::GetDroppedReplies() const {
    DroppedReplies dropped;
    dropped.unanswerable = drops->unanswerable.load();
    dropped.misaddressed = drops->misaddressed.load();
    dropped.overBudget = drops->overBudget.load();
    return dropped;
}

}  // namespace Korvo::Plexis::Tessel::Client

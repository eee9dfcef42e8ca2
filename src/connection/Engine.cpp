#include "connection/Engine.h"

#include <cstdio>
#include <random>
#include <stdexcept>

#include <Korvo/Common/Messaging/EndPoint.h>
#include <Korvo/Plexis/Tessel/Client/ZmqMessenger.h>
#include <Korvo/Plexis/Tessel/Logging/Log.h>
#include <Korvo/Plexis/Tessel/Logging/Loggers.h>

#include "connection/JoinedBuilders.h"

namespace Korvo::Plexis::Tessel::Client::Detail {

using Calls::CallSetup;
namespace {

namespace Commands = HighLevelOperations::Commands;
using Common::Messaging::ConnectionState;
using Common::Messaging::EndPoint;
using Logging::ILogger;

constexpr const char* kSource = "Korvo/Plexis/Tessel/Client/Connection";

thread_local bool onCallbackThread = false;

// Keeps the operation it answers for only weakly: the operation keeps the handle, which keeps
// this listener.
class Listener final : public ReplyListener {
public:
    explicit Listener(std::weak_ptr<OperationCore> operation) : operation(std::move(operation)) {}

    void Queued() override {
        if (auto alive = operation.lock()) {
            // Parts handed over one by one are taken by the callback thread, as fast as the
            // application's callback takes them: until then they wait in the request's reply
            // queue, which is bounded in bytes.
            if (alive->setup.onPart) {
                alive->engine->ScheduleDrain(std::move(alive));
            } else {
                alive->Drain();
            }
        }
    }

    // Possibly under the request map's mutex: hand the work to the callback thread.
    void Ended() override {
        if (auto alive = operation.lock()) {
            alive->engine->ScheduleDrain(std::move(alive));
        }
    }

private:
    std::weak_ptr<OperationCore> operation;
};

EndPoint EndPointWithKey(const std::string& text, const std::string& key) {
    EndPoint parsed(text);
    return parsed.IsEncrypted() || key.empty() ? parsed : EndPoint(parsed.Address(), key);
}

std::string ReasonOfEnding(PendingCommandReply::ItemKind kind) {
    switch (kind) {
        case PendingCommandReply::ItemKind::NotSent:
            return "the link to the server was down";
        case PendingCommandReply::ItemKind::LinkLost:
            return "the link to the server was lost before the reply";
        case PendingCommandReply::ItemKind::Overflowed:
            return "the reply was larger than the limit of waiting reply bytes";
        default:
            return "the connection was closed";
    }
}

Outcome OutcomeOfEnding(PendingCommandReply::ItemKind kind) {
    switch (kind) {
        case PendingCommandReply::ItemKind::NotSent:
            return Outcome::NotSent;
        case PendingCommandReply::ItemKind::LinkLost:
            return Outcome::LinkLost;
        case PendingCommandReply::ItemKind::Overflowed:
            return Outcome::BadReply;
        default:
            return Outcome::Cancelled;
    }
}

bool Accepts(const CallSetup& setup, int type) {
    for (int accepted : setup.replyTypes) {
        if (accepted == type) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool OnCallbackThread() { return onCallbackThread; }

std::string NewCommandGuid() {
    thread_local std::mt19937_64 generator{std::random_device{}()};
    const std::uint64_t high = generator();
    const std::uint64_t low = generator();
    char text[37];
    std::snprintf(text, sizeof text, "%08x-%04x-4%03x-%04x-%012llx",
                  static_cast<unsigned>(high >> 32), static_cast<unsigned>((high >> 16) & 0xffff),
                  static_cast<unsigned>(high & 0x0fff),
                  static_cast<unsigned>(0x8000 | ((low >> 48) & 0x3fff)),
                  static_cast<unsigned long long>(low & 0xffffffffffffULL));
    return text;
}

// ---- OperationCore ----

OperationCore::OperationCore(std::shared_ptr<Engine> engine,
                             std::unique_ptr<Commands::CommandParams> params, CallSetup setup,
                             Clock::time_point deadline)
    : engine(std::move(engine)),
      params(std::move(params)),
      setup(std::move(setup)),
      deadline(deadline),
      retriesLeft(this->setup.retries) {}

void OperationCore::Launch(bool rethrow) {
    if (IsFinished()) {
        return;
    }
    std::unique_ptr<PendingCommandReply> sent;
    std::string failure;
    try {
        sent = engine->client->Request(std::string(setup.commandName), *params,
                                       std::make_shared<Listener>(weak_from_this()));
        if (!sent) {
            failure = "the connection is closed";
        }
    } catch (const std::exception& error) {
        if (rethrow) {
            throw;
        }
        failure = error.what();
    }
    if (!failure.empty()) {
        Finish(Outcome::NotSent, failure);
        return;
    }
    {
        std::lock_guard<std::mutex> lock(drainMutex);
        if (IsFinished()) {
            return;  // ended meanwhile; releasing the handle forgets the request
        }
        handle = std::move(sent);
    }
    if (setup.onPart) {
        engine->ScheduleDrain(shared_from_this());
    } else {
        Drain();
    }
}

void OperationCore::Drain() {
    for (;;) {
        Next next = Next::Nothing;
        std::unique_ptr<Commands::CommandReply> part;
        {
            std::lock_guard<std::mutex> lock(drainMutex);
            while (handle && handle->IsPending() && next == Next::Nothing && !part) {
                auto item = handle->Next(std::chrono::milliseconds(0));
                if (item.kind == PendingCommandReply::ItemKind::TimedOut) {
                    break;
                }
                Process(std::move(item), next, part);
            }
        }
        if (!part) {
            Follow(next);
            return;
        }
        // Only with `onPart`, whose operations are drained on the callback thread: the part is
        // handed over there, with no lock held, before the next item is taken.
        try {
            setup.onPart(*part);
        } catch (...) {
            engine->ScheduleDrain(shared_from_this());  // what is left is still taken
            throw;
        }
    }
}

void OperationCore::Process(PendingCommandReply::Item item, Next& next,
                            std::unique_ptr<Commands::CommandReply>& part) {
    using Kind = PendingCommandReply::ItemKind;
    if (item.kind != Kind::Partial && item.kind != Kind::Final) {
        next = End(OutcomeOfEnding(item.kind), nullptr, ReasonOfEnding(item.kind));
        return;
    }
    std::unique_ptr<Commands::CommandReply> built;
    try {
        built = handle->BuildReply(item);
    } catch (const std::exception& error) {
        next = End(Outcome::BadReply, nullptr, error.what());
        return;
    }
    const int type = built->GetType();
    if (item.kind == Kind::Partial) {
        if (type != setup.partType) {
            next = End(Outcome::BadReply, nullptr,
                       "a part of class " + std::to_string(type) + " the command cannot receive");
            return;
        }
        if (setup.onPart) {
            part = std::move(built);
            return;
        }
        try {
            if (joined) {
                JoinReplies(*joined, std::move(*built));
            } else {
                joined = std::move(built);
            }
        } catch (const std::exception& error) {
            next = End(Outcome::BadReply, nullptr, error.what());
        }
        return;
    }
    if (!Accepts(setup, type)) {
        next = End(Outcome::BadReply, nullptr,
                   "a reply of class " + std::to_string(type) + " the command cannot receive");
        return;
    }
    if (joined && joined->GetType() == type) {
        try {
            JoinReplies(*joined, std::move(*built));
        } catch (const std::exception& error) {
            next = End(Outcome::BadReply, nullptr, error.what());
            return;
        }
        built = std::move(joined);
    }
    next = End(Outcome::Replied, std::move(built), {});
}

OperationCore::Next OperationCore::End(Outcome how, std::unique_ptr<Commands::CommandReply> with,
                                       std::string why) {
    if (IsFinished()) {
        return Next::Nothing;
    }
    // Releasing the handle forgets the request, so that a late reply is dropped by the command
    // client; done before the outcome is published, so that whoever sees the outcome can count on
    // it.
    handle.reset();
    joined.reset();
    if ((how == Outcome::NotSent || how == Outcome::LinkLost) && retriesLeft > 0 &&
        Clock::now() < deadline) {
        --retriesLeft;
        return Next::Retry;
    }
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        reply = std::move(with);
        reason = std::move(why);
        outcome.store(how);
    }
    ended.notify_all();
    return Next::Settle;
}

void OperationCore::Finish(Outcome how, std::string why) {
    Next next;
    {
        std::lock_guard<std::mutex> lock(drainMutex);
        next = End(how, nullptr, std::move(why));
    }
    Follow(next);
}

void OperationCore::Follow(Next next) {
    if (next == Next::Retry) {
        engine->Park(shared_from_this());
        return;
    }
    if (next != Next::Settle) {
        return;
    }
    auto self = shared_from_this();
    engine->Unregister(self);
    if (!setup.laneKey.empty()) {
        engine->LaneFinished(self);
    }
    const Outcome how = outcome.load();
    if (how != Outcome::Replied && how != Outcome::Cancelled) {
        if (const auto admitted = engine->endedLog.Admit()) {
            KORVO_LOG_COMPOSED(engine->logger, ILogger::Warning,
                [&] {
                    return engine->options.name + ": " + std::string(setup.commandName) + " " +
                           params->commandGuid.GetValue() + " ended " + ToString(how) +
                           (reason.empty() ? "" : " (" + reason + ")") + "." +
                           Logging::Suppressed(*admitted);
                });
        }
    }
    if (setup.onDone) {
        engine->Post([onDone = setup.onDone, self] { onDone(self); });
    }
}

// ---- Engine ----

Engine::Engine(ConnectionOptions given)
    : options(std::move(given)),
      logger(Logging::Loggers::GetInstance().GetLogger("Connection")) {
    const EndPoint commands = EndPointWithKey(options.commandEndPoint, options.serverPublicKey);
    std::vector<EndPoint> notificationEndPoints;
    for (const auto& text : options.notificationEndPoints) {
        notificationEndPoints.push_back(EndPointWithKey(text, options.serverPublicKey));
    }
    auto messenger = std::make_unique<ZmqMessenger>(
        commands, options.transport, [this](ConnectionState now) { OnState(now); });
    thread = std::thread(&Engine::Run, this);
    try {
        client = std::make_unique<CommandClient>(std::move(messenger),
                                                 std::make_shared<JoinedPayloadBuilder>(),
                                                 std::make_shared<JoinedReplyBuilder>(),
                                                 options.limits);
        if (!notificationEndPoints.empty()) {
            notifications = std::make_unique<NotificationClient>(
                notificationEndPoints, options.topics, options.transport);
        }
    } catch (...) {
        Close();
        throw;
    }
    KORVO_LOG_COMPOSED(logger, ILogger::Info, [&] { return options.name + ": started for " + commands.ToString() + "."; });
}

Engine::~Engine() { Close(); }

void Engine::Close() {
    {
        std::lock_guard<std::mutex> lock(mutex);
        if (closed) {
            return;
        }
        closed = true;
    }
    if (client) {
        client->Stop();  // ends every request it holds; their operations end on this thread below
    }
    std::vector<std::shared_ptr<OperationCore>> pending;
    {
        std::lock_guard<std::mutex> lock(mutex);
        for (auto& entry : deadlines) {
            pending.push_back(entry.second);
        }
    }
    for (auto& operation : pending) {
        operation->Finish(Outcome::Cancelled, "the connection was closed");
    }
    {
        std::lock_guard<std::mutex> lock(mutex);
        stopping = true;
    }
    wake.notify_all();
    if (thread.joinable()) {
        if (onCallbackThread) {
            thread.detach();  // misuse (documented); the thread ends after this callback
        } else {
            thread.join();
        }
    }
    // Only now: until the callback thread has ended, its work may still call the client.
    notifications.reset();
    client.reset();
}

void Engine::Post(std::function<void()> job) {
    {
        std::lock_guard<std::mutex> lock(mutex);
        work.push_back(std::move(job));
    }
    wake.notify_one();
}

void Engine::ScheduleDrain(std::shared_ptr<OperationCore> operation) {
    if (operation->drainPosted.exchange(true)) {
        return;  // the drain already posted takes whatever is queued when it runs
    }
    Post([operation = std::move(operation)] {
        operation->drainPosted = false;
        operation->Drain();
    });
}

void Engine::Register(const std::shared_ptr<OperationCore>& operation) {
    bool earliest = false;
    {
        std::lock_guard<std::mutex> lock(mutex);
        operation->slot = deadlines.emplace(operation->deadline, operation);
        operation->registered = true;
        // The callback thread is woken only when it would sleep past this time limit: in a steady
        // flow of commands it wakes about once per time limit, not once per command.
        earliest = operation->deadline < sleepingUntil;
    }
    if (earliest) {
        wake.notify_one();
    }
}

void Engine::Unregister(const std::shared_ptr<OperationCore>& operation) {
    std::lock_guard<std::mutex> lock(mutex);
    if (operation->registered) {
        deadlines.erase(operation->slot);
        operation->registered = false;
    }
}

void Engine::Park(std::shared_ptr<OperationCore> operation) {
    // Sent again on the next report of `Connected`, not at once: the state may not show the loss
    // yet, and a retry then would only fail again. A command that stays parked ends at its time
    // limit.
    std::lock_guard<std::mutex> lock(mutex);
    parked.push_back(std::move(operation));
}

void Engine::LaunchParked() {
    std::vector<std::shared_ptr<OperationCore>> again;
    {
        std::lock_guard<std::mutex> lock(mutex);
        again.swap(parked);
    }
    for (auto& operation : again) {
        operation->Launch();
    }
}

void Engine::Enqueue(const std::shared_ptr<OperationCore>& operation) {
    std::shared_ptr<OperationCore> replaced;
    bool launch = false;
    {
        std::lock_guard<std::mutex> lock(laneMutex);
        Lane& lane = lanes[operation->setup.laneKey];
        if (lane.inFlight) {
            replaced = std::exchange(lane.waiting, operation);
        } else {
            lane.inFlight = operation;
            launch = true;
        }
    }
    if (replaced) {
        replaced->Finish(Outcome::Cancelled, "replaced by a newer value");
    }
    if (launch) {
        operation->Launch();
    }
}

void Engine::LaneFinished(const std::shared_ptr<OperationCore>& operation) {
    std::shared_ptr<OperationCore> next;
    {
        std::lock_guard<std::mutex> lock(laneMutex);
        auto found = lanes.find(operation->setup.laneKey);
        if (found == lanes.end()) {
            return;
        }
        Lane& lane = found->second;
        if (lane.waiting == operation) {
            lane.waiting.reset();
            return;
        }
        if (lane.inFlight != operation) {
            return;
        }
        next = std::exchange(lane.waiting, nullptr);
        lane.inFlight = next;
        if (!next) {
            lanes.erase(found);
        }
    }
    if (next) {
        next->Launch();
    }
}

void Engine::OnState(ConnectionState now) {
    {
        std::lock_guard<std::mutex> lock(stateMutex);
        state.store(now);
    }
    stateChanged.notify_all();
    
    if (const auto admitted = stateLog.Admit()) {
        KORVO_LOG_COMPOSED(logger, ILogger::Info,
            [&] {
                return options.name + ": command link " + Common::Messaging::ToString(now) + "." +
                       Logging::Suppressed(*admitted);
            });
    }
    Post([this, now] {
        if (now == ConnectionState::Connected) {
            LaunchParked();
        }
        std::vector<std::shared_ptr<std::function<void(ConnectionState)>>> calls;
        {
            std::lock_guard<std::mutex> lock(watcherMutex);
            for (auto& entry : watchers) {
                calls.push_back(entry.second);
            }
        }
        for (auto& call : calls) {
            (*call)(now);
        }
    });
}

void Engine::Run() {
    onCallbackThread = true;
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
        if (!work.empty()) {
            std::deque<std::function<void()>> batch;
            batch.swap(work);
            lock.unlock();
            for (auto& job : batch) {
                try {
                    job();
                } catch (const std::exception& error) {
                    
                    if (const auto admitted = callbackLog.Admit()) {
                        KORVO_LOG_COMPOSED(logger, ILogger::Error,
                            [&] {
                                return options.name + ": a callback threw (" + error.what() +
                                       ")." + Logging::Suppressed(*admitted);
                            });
                    }
                } catch (...) {
                }
            }
            batch.clear();
            lock.lock();
            continue;
        }
        if (stopping) {
            break;
        }
        if (!deadlines.empty() && deadlines.begin()->first <= Clock::now()) {
            auto expired = deadlines.begin()->second;
            deadlines.erase(deadlines.begin());
            expired->registered = false;
            lock.unlock();
            const auto limit = expired->setup.timeLimit;
            expired->Finish(Outcome::TimedOut,
                            "no reply within " + std::to_string(limit.count()) + " ms");
            lock.lock();
            continue;
        }
        if (deadlines.empty()) {
            sleepingUntil = Clock::time_point::max();
            wake.wait(lock);
        } else {
            sleepingUntil = deadlines.begin()->first;  // a copy: the entry may go meanwhile
            wake.wait_until(lock, sleepingUntil);
        }
        sleepingUntil = Clock::time_point::min();
    }
    onCallbackThread = false;
}

}  // namespace Korvo::Plexis::Tessel::Client::Detail

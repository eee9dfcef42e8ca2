#include <Korvo/Plexis/Tessel/Client/Connection.h>

#include <stdexcept>

#include "connection/Engine.h"

namespace Korvo::Plexis::Tessel::Client {

namespace Commands = HighLevelOperations::Commands;
using Common::Messaging::ConnectionState;

const char* ToString(Outcome outcome) noexcept {
    switch (outcome) {
        case Outcome::Pending:
            return "Pending";
        case Outcome::Replied:
            return "Replied";
        case Outcome::NotSent:
            return "NotSent";
        case Outcome::LinkLost:
            return "LinkLost";
        case Outcome::TimedOut:
            return "TimedOut";
        case Outcome::Cancelled:
            return "Cancelled";
        case Outcome::BadReply:
            return "BadReply";
    }
    return "Unknown";
}

namespace Calls {
namespace {

using Detail::OnCallbackThread;

void RefuseOnCallbackThread(const char* what) {
    if (OnCallbackThread()) {
        throw std::logic_error(std::string("Connection: ") + what +
                               " called from a callback of the connection would wait for itself.");
    }
}

}  // namespace

Outcome OutcomeOf(const OperationCore& core) { return core.outcome.load(); }

const Data::Guid& GuidOf(const OperationCore& core) { return core.params->commandGuid; }

const std::string& ReasonOf(const OperationCore& core) {
    static const std::string none;
    return core.IsFinished() ? core.reason : none;
}

const Commands::CommandReply* ReplyOf(const OperationCore& core) {
    return core.outcome.load() == Outcome::Replied ? core.reply.get() : nullptr;
}

Outcome WaitFor(const OperationCore& core, const std::chrono::milliseconds* limit) {
    RefuseOnCallbackThread("Operation::Wait");
    std::unique_lock<std::mutex> lock(core.stateMutex);
    const auto ended = [&] { return core.IsFinished(); };
    if (limit == nullptr) {
        core.ended.wait(lock, ended);
    } else {
        core.ended.wait_for(lock, *limit, ended);
    }
    return core.outcome.load();
}

void Cancel(OperationCore& core) {
    core.Finish(Outcome::Cancelled, "cancelled by the application");
}

std::string LaneKeyOf(const Commands::DialCommandParams& params) {
    std::string key = "dial";
    for (const auto& player : params.players) {
        key += ' ';
        key += player.ToString();
    }
    return key;
}

}  // namespace Calls

Connection::Connection(ConnectionOptions options)
    : engine(std::make_shared<Detail::Engine>(std::move(options))) {}

Connection::~Connection() { engine->Close(); }

const std::string& Connection::Name() const { return engine->options.name; }

ConnectionState Connection::GetState() const { return engine->state.load(); }

bool Connection::WaitConnected(std::chrono::milliseconds limit) const {
    if (Detail::OnCallbackThread()) {
        throw std::logic_error(
            "Connection: WaitConnected called from a callback of the connection would wait for "
            "itself.");
    }
    std::unique_lock<std::mutex> lock(engine->stateMutex);
    return engine->stateChanged.wait_for(
        lock, limit, [&] { return engine->state.load() == ConnectionState::Connected; });
}

int Connection::Watch(std::function<void(ConnectionState)> watcher) {
    auto shared = std::make_shared<std::function<void(ConnectionState)>>(std::move(watcher));
    int id;
    {
        std::lock_guard<std::mutex> lock(engine->watcherMutex);
        id = engine->nextWatcher++;
        engine->watchers.emplace(id, shared);
    }
    engine->Post([shared, core = engine.get()] { (*shared)(core->state.load()); });
    return id;
}

void Connection::Unwatch(int watcher) {
    std::lock_guard<std::mutex> lock(engine->watcherMutex);
    engine->watchers.erase(watcher);
}

NotificationClient* Connection::Notifications() { return engine->notifications.get(); }

CommandClient& Connection::Commands() { return *engine->client; }

std::shared_ptr<Detail::OperationCore> Connection::StartUntyped(
    std::unique_ptr<Commands::CommandParams> owned, Commands::CommandParams& params,
    Calls::CallSetup setup) {
    if (params.commandGuid.GetValue().empty()) {
        params.commandGuid = Data::Guid(Detail::NewCommandGuid());
    }
    if (setup.timeLimit <= std::chrono::milliseconds::zero()) {
        setup.timeLimit = engine->options.timeLimit;
    }
    const auto deadline = Detail::Clock::now() + setup.timeLimit;
    const bool lane = !setup.laneKey.empty();
    auto operation =
        std::make_shared<Detail::OperationCore>(engine, std::move(owned), std::move(setup), deadline);
    engine->Register(operation);
    if (lane) {
        engine->Enqueue(operation);
        return operation;
    }
    try {
        operation->Launch(true);
    } catch (...) {
        engine->Unregister(operation);
        throw;
    }
    return operation;
}

}  // namespace Korvo::Plexis::Tessel::Client

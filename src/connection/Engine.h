#pragma once

// The machinery behind `Connection`: one operation's state (`OperationCore`) and the connection's
// (`Engine`), with its callback thread.
//
// Locks, in the order they may be taken:
//   OperationCore::drainMutex   takes items off one request's handle; held while the handle is
//                               read or released (which takes the request map's mutex)
//   RequestMap::mutex, then a reply queue's mutex (the command client's)
//   Engine::mutex, Engine::laneMutex, Engine::watcherMutex, OperationCore::stateMutex: leaves
// `ReplyListener::Ended` may run under the request map's mutex: it only takes `Engine::mutex`.
// No lock is held while a callback of the application runs: they all run on the callback thread,
// which takes work off its queue under `Engine::mutex` and runs it after releasing it.

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <Korvo/Plexis/Tessel/Client/Connection.h>
#include <Korvo/Plexis/Tessel/Client/PendingCommandReply.h>
#include <Korvo/Plexis/Tessel/Logging/ILogger.h>
#include <Korvo/Plexis/Tessel/Logging/RateLimit.h>

namespace Korvo::Plexis::Tessel::Client::Detail {

using Calls::CallSetup;

using Clock = std::chrono::steady_clock;

class OperationCore : public std::enable_shared_from_this<OperationCore> {
public:
    OperationCore(std::shared_ptr<Engine> engine,
                  std::unique_ptr<HighLevelOperations::Commands::CommandParams> params,
                  CallSetup setup, Clock::time_point deadline);

    /// Sends the command (again, for a retry) and takes what is already queued. What building
    /// the payload throws ends the operation with `NotSent`, or is thrown when `rethrow`.
    void Launch(bool rethrow = false);
    /// Takes every item queued on the handle; ends the operation on the final one or an ending.
    /// With `onPart`, runs on the callback thread only and hands each part over as it is taken.
    void Drain();
    /// Ends the operation with `outcome` unless it has ended (time limit, cancel, close).
    void Finish(Outcome outcome, std::string reason);

    bool IsFinished() const { return outcome.load() != Outcome::Pending; }

    const std::shared_ptr<Engine> engine;
    const std::unique_ptr<HighLevelOperations::Commands::CommandParams> params;
    const CallSetup setup;
    const Clock::time_point deadline;

    std::atomic<Outcome> outcome{Outcome::Pending};
    std::unique_ptr<HighLevelOperations::Commands::CommandReply> reply;  // set before `outcome`
    std::string reason;                                                   // likewise
    mutable std::mutex stateMutex;
    mutable std::condition_variable ended;

    // Set while a drain of this operation waits on the callback thread's queue.
    std::atomic<bool> drainPosted{false};

    // The engine's, under its mutex: where the operation waits for its time limit.
    bool registered = false;
    std::multimap<Clock::time_point, std::shared_ptr<OperationCore>>::iterator slot;

private:
    enum class Next { Nothing, Settle, Retry };
    // Under `drainMutex`: records the ending (or a retry) and releases the handle.
    Next End(Outcome outcome, std::unique_ptr<HighLevelOperations::Commands::CommandReply> reply,
             std::string reason);
    // A part to hand over to `onPart` is left in `part`.
    void Process(PendingCommandReply::Item item, Next& next,
                 std::unique_ptr<HighLevelOperations::Commands::CommandReply>& part);
    // After `drainMutex` is released: what follows an ending.
    void Follow(Next next);

    std::mutex drainMutex;
    std::unique_ptr<PendingCommandReply> handle;
    std::unique_ptr<HighLevelOperations::Commands::CommandReply> joined;
    int retriesLeft;
};

class Engine {
public:
    explicit Engine(ConnectionOptions options);
    ~Engine();

    /// Ends every operation, closes both links, stops the callback thread.
    void Close();

    /// Runs `work` on the callback thread.
    void Post(std::function<void()> work);
    /// Takes the operation's queued items on the callback thread.
    void ScheduleDrain(std::shared_ptr<OperationCore> operation);

    void Register(const std::shared_ptr<OperationCore>& operation);
    void Unregister(const std::shared_ptr<OperationCore>& operation);
    /// Keeps `operation` until the link is connected, then launches it again.
    void Park(std::shared_ptr<OperationCore> operation);
    /// Sends an operation of a lane, or lets it wait behind the one in flight.
    void Enqueue(const std::shared_ptr<OperationCore>& operation);
    /// After an operation of a lane ended: the next one of that lane, if any, is sent.
    void LaneFinished(const std::shared_ptr<OperationCore>& operation);

    void OnState(Common::Messaging::ConnectionState state);

    const ConnectionOptions options;
    std::shared_ptr<Logging::ILogger> logger;
    // Rate limits of this connection's repeated log lines: operations ended short of a reply,
    // link state changes, callbacks that threw.
    Logging::RateLimit endedLog, stateLog, callbackLog;
    std::unique_ptr<CommandClient> client;
    std::unique_ptr<NotificationClient> notifications;

    std::atomic<Common::Messaging::ConnectionState> state{
        Common::Messaging::ConnectionState::Connecting};
    std::mutex stateMutex;
    std::condition_variable stateChanged;

    std::mutex watcherMutex;
    std::map<int, std::shared_ptr<std::function<void(Common::Messaging::ConnectionState)>>>
        watchers;
    int nextWatcher = 0;

private:
    void Run();
    // On the callback thread: sends the operations kept by `Park` again.
    void LaunchParked();

    std::mutex mutex;
    std::condition_variable wake;
    std::deque<std::function<void()>> work;
    std::multimap<Clock::time_point, std::shared_ptr<OperationCore>> deadlines;
    std::vector<std::shared_ptr<OperationCore>> parked;
    bool stopping = false;
    bool closed = false;
    // Until when the callback thread sleeps; `min` while it is awake.
    Clock::time_point sleepingUntil = Clock::time_point::min();

    struct Lane {
        std::shared_ptr<OperationCore> inFlight;
        std::shared_ptr<OperationCore> waiting;
    };
    std::mutex laneMutex;
    std::map<std::string, Lane> lanes;

    std::thread thread;
};

/// True on a connection's callback thread.
bool OnCallbackThread();

/// A fresh command identifier: a random UUID in its usual text form.
std::string NewCommandGuid();

}  // namespace Korvo::Plexis::Tessel::Client::Detail

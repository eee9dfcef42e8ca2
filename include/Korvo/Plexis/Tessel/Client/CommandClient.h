#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include <Korvo/Plexis/Tessel/Client/BaseClientMessenger.h>
#include <Korvo/Plexis/Tessel/Client/CommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/CommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/Client/PendingCommandReply.h>
#include <Korvo/Plexis/Tessel/Client/RequestMap.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/Logging/ILogger.h>

namespace Korvo::Plexis::Tessel::Client {

/// Sends commands to the server and hands each reply to the request it answers.
///
/// The client owns its messenger and runs one reception thread that takes every incoming message
/// and queues it on the handle of the request whose ticket it carries. It is live once
/// constructed. A transport failure is never thrown at the application: it is logged at level 60
/// (logger "CommandClient") and the client stops itself, releasing every waiter.
///
/// Threads: `Request` may be called from any number of threads at once. `Pause` and `Stop` must not
/// run at the same time as each other, and must not be called from the reception thread.
class CommandClient {
public:
    /// Takes the messenger over, shares the builders, starts the reception thread and logs
    /// "Started." at level 30.
    CommandClient(std::unique_ptr<BaseClientMessenger> messenger,
                  std::shared_ptr<CommandParamsPayloadBuilder> payloadBuilder,
                  std::shared_ptr<CommandReplyBuilder> replyBuilder);

    /// Stops the client (see `Stop`) and waits for the reception thread.
    ~CommandClient();

    CommandClient(const CommandClient&) = delete;
    CommandClient& operator=(const CommandClient&) = delete;

    /// Builds the payload of `commandName` from `params`, sends it under the next ticket (0, 1, 2,
    /// ...) and returns the handle on which its replies arrive; does not wait for them.
    /// Returns an empty pointer when paused or stopped, when the payload builder returns no
    /// payload (logged at 50, no ticket used), or when sending fails (logged at 60, then the
    /// client stops). What the payload builder throws ("Unknown command type.", a failed
    /// conversion) passes through unchanged; no ticket is used and the client keeps running.
    std::unique_ptr<PendingCommandReply> Request(
        const std::string& commandName, const HighLevelOperations::Commands::CommandParams& params);

    /// `Pause(true)` cancels every pending request and stops the reception thread, keeping the
    /// messenger open; `Pause(false)` starts a new reception thread. Each is a no-operation when
    /// already in that state, and `Pause(false)` does nothing once the client is stopped.
    void Pause(bool pause);

    /// Cancels every pending request (each waiter receives the cancellation), shuts the messenger
    /// down and joins the reception thread. A second call returns at once.
    void Stop();

    /// The messenger's view of the link to the server.
    Common::Messaging::ConnectionState GetConnectionState() const;

private:
    void ProcessReception();
    // Hands one reply to the request it answers, or drops it; the reception thread's.
    void Deliver(std::unique_ptr<BaseMessage> message);
    void StartReceptionThread();
    void JoinReceptionThread();

    std::unique_ptr<BaseClientMessenger> messenger;
    std::shared_ptr<CommandParamsPayloadBuilder> payloadBuilder;
    std::shared_ptr<CommandReplyBuilder> replyBuilder;
    std::shared_ptr<Logging::ILogger> logger;
    std::shared_ptr<RequestMap> requestMap;
    std::thread receptionThread;
    // Serialises the cancel-and-shut-down step of Stop between an application thread and the
    // reception thread stopping the client after a transport failure. Never held while joining.
    std::mutex stopMutex;
};

}  // namespace Korvo::Plexis::Tessel::Client

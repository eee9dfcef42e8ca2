#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
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
/// A reply is handed to a request only when it carries the request's ticket and, if it names a
/// command identifier (`commandGuid`), the identifier the request was sent with; any other reply is
/// dropped and counted (see `GetDroppedReplies`), and logged at level 40 a few times a second at
/// most.
///
/// Threads: `Request` may be called from any number of threads at once. `Pause` and `Stop` must not
/// run at the same time as each other, and must not be called from the reception thread.
class CommandClient {
public:
    /// Bounds on what one client holds for the application.
    struct Limits {
        /// The most bytes of replies that may wait on one request's handle, unread (a reply is
        /// charged its header and payload plus 512 bytes). A reply that arrives while nothing
        /// waits is always taken, so one request holds at most this or one reply, whichever is
        /// larger. A reply that would go beyond it ends the request with `Overflowed`, discards
        /// what waited, and the server's further replies to it are dropped and counted. The
        /// default holds a listing of 100,000 clips even when nothing reads it until it is whole.
        std::size_t waitingReplyBytes = std::size_t{64} << 20;
    };

    /// Replies the reception thread dropped, by cause, since the client was made.
    struct DroppedReplies {
        /// For no pending request: an unknown ticket, a request that already ended (cancelled,
        /// abandoned, answered, overflowed, link lost), or a part after the final reply.
        std::uint64_t unanswerable = 0;
        /// Naming another command identifier than their request's.
        std::uint64_t misaddressed = 0;
        /// Discarded because their request's waiting replies reached `Limits::waitingReplyBytes`,
        /// the one that would have gone beyond it included.
        std::uint64_t overBudget = 0;
    };

    /// Takes the messenger over, shares the builders, starts the reception thread and logs
    /// "Started." at level 30. The limits are the defaults of `Limits`.
    CommandClient(std::unique_ptr<BaseClientMessenger> messenger,
                  std::shared_ptr<CommandParamsPayloadBuilder> payloadBuilder,
                  std::shared_ptr<CommandReplyBuilder> replyBuilder);

    /// The same with other limits.
    CommandClient(std::unique_ptr<BaseClientMessenger> messenger,
                  std::shared_ptr<CommandParamsPayloadBuilder> payloadBuilder,
                  std::shared_ptr<CommandReplyBuilder> replyBuilder, const Limits& limits);

    /// Stops the client (see `Stop`) and waits for the reception thread.
    ~CommandClient();

    CommandClient(const CommandClient&) = delete;
    CommandClient& operator=(const CommandClient&) = delete;

    /// Builds the payload of `commandName` from `params`, sends it under the next ticket (0, 1, 2,
    /// ...) and returns the handle on which its replies arrive; does not wait for them.
    /// Returns an empty pointer when paused or stopped (also when `Pause(true)` or `Stop` ran
    /// meanwhile: no command is sent once they have returned), when the payload builder returns
    /// no payload (logged at 50, no ticket used), or when the transport fails (logged at 60, then
    /// the client stops). What the payload builder throws ("Unknown command type.", a failed
    /// conversion) passes through unchanged; no ticket is used and the client keeps running.
    /// When the messenger could not take the command (see `BaseClientMessenger::TrySend`; the
    /// ZeroMQ messenger: the link is down, or did not come up or make room within its send wait),
    /// the handle's first item is `NotSent`. A request sent before the link is lost ends with
    /// `LinkLost` as soon as the reception thread learns of the loss.
    std::unique_ptr<PendingCommandReply> Request(
        const std::string& commandName, const HighLevelOperations::Commands::CommandParams& params);

    /// `Request`, and `listener` is told of every item queued on the handle (see
    /// `ReplyListener`), so that nothing has to wait in `Next` for it. An item may be queued, and
    /// the listener told, before this returns (`NotSent` always is).
    std::unique_ptr<PendingCommandReply> Request(
        const std::string& commandName, const HighLevelOperations::Commands::CommandParams& params,
        std::shared_ptr<ReplyListener> listener);

    /// `Pause(true)` cancels every pending request and stops the reception thread, keeping the
    /// messenger open; `Pause(false)` starts a new reception thread. Each is a no-operation when
    /// already in that state, and `Pause(false)` does nothing once the client is stopped.
    void Pause(bool pause);

    /// Cancels every pending request (each waiter receives the cancellation), shuts the messenger
    /// down and joins the reception thread. A second call returns at once.
    void Stop();

    /// The messenger's view of the link to the server.
    Common::Messaging::ConnectionState GetConnectionState() const;

    /// What the reception thread has dropped so far. Any thread.
    DroppedReplies GetDroppedReplies() const;

private:
    void ProcessReception();
    // Hands one reply to the request it answers, or drops it; the reception thread's.
    void Deliver(std::unique_ptr<BaseMessage> message);
    // Ends the requests sent before the messenger's latest link loss; the reception thread's.
    void EndRequestsOfLostLinks();
    void StartReceptionThread();
    void JoinReceptionThread();

    std::unique_ptr<BaseClientMessenger> messenger;
    std::shared_ptr<CommandParamsPayloadBuilder> payloadBuilder;
    std::shared_ptr<CommandReplyBuilder> replyBuilder;
    std::shared_ptr<Logging::ILogger> logger;
    std::shared_ptr<RequestMap> requestMap;
    std::thread receptionThread;
    const Limits limits;
    std::uint64_t linkLossesSeen = 0;  // the reception thread's
    // What the reception thread dropped, and its rate-limited logs: this client's own.
    struct Drops;
    std::unique_ptr<Drops> drops;
    // Serialises the cancel-and-shut-down step of Stop between an application thread and the
    // reception thread stopping the client after a transport failure. Never held while joining.
    std::mutex stopMutex;
};

}  // namespace Korvo::Plexis::Tessel::Client

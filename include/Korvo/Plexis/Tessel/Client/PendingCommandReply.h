#pragma once

#include <chrono>
#include <memory>

#include <Korvo/Plexis/Tessel/Client/BaseMessage.h>
#include <Korvo/Plexis/Tessel/Client/CommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/Client/RequestMap.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::Client {

/// The handle on one command, returned by `CommandClient::Request`. The replies arrive in order:
/// any number of partial replies, then exactly one ending: the final reply, or one of the
/// outcomes below, each reported as soon as the client knows it. A handle may outlive its client.
/// One thread uses a handle at a time. The client never sends a command again by itself.
class PendingCommandReply {
public:
    /// What `Next` took from the reply queue.
    enum class ItemKind {
        Partial,    ///< one part of a reply ("[part]" header); more follow
        Final,      ///< the final reply; nothing follows
        Cancelled,  ///< the request will never be answered (stop or pause); nothing follows
        TimedOut,   ///< nothing arrived within the time limit; the request is still pending
        /// The command never reached the transport (the link was down, or stayed full for the
        /// messenger's send wait): it did not run, and sending it again is safe. Nothing follows.
        NotSent,
        /// The command was sent, then the link to the server was lost before its final reply:
        /// it may have run, and no reply can come any more. Nothing follows.
        LinkLost,
        /// The replies waiting on this handle reached the client's byte budget
        /// (`CommandClient::Limits::waitingReplyBytes`): they were discarded and the server's
        /// further replies to it are dropped. The command may have run. Nothing follows.
        Overflowed,
    };

    struct Item {
        ItemKind kind;
        /// The received message for `Partial` and `Final`; empty otherwise.
        std::unique_ptr<BaseMessage> message;
    };

    PendingCommandReply(std::shared_ptr<CommandReplyBuilder> replyBuilder,
                        std::shared_ptr<RequestMap> requestMap, int requestId,
                        std::shared_ptr<ReplyQueue> replies);

    /// While still pending, removes the request from the map (under its mutex), so that a late
    /// reply is dropped rather than queued for nobody.
    ~PendingCommandReply();

    PendingCommandReply(const PendingCommandReply&) = delete;
    PendingCommandReply& operator=(const PendingCommandReply&) = delete;

    /// The ticket under which the command was sent.
    int GetRequestId() const noexcept { return requestId; }

    /// True until `Next` has returned the final reply or another ending.
    bool IsPending() const noexcept { return pending; }

    /// Waits as long as it takes for the next item. Throws `std::logic_error` when the request is
    /// no longer pending (nothing more can arrive, so waiting would never end).
    Item Next();

    /// Waits at most `timeout` for the next item; `TimedOut` when none came. Throws like `Next()`.
    Item Next(std::chrono::milliseconds timeout);

    /// Builds the domain reply of a `Partial` or `Final` item with the reply builder (from the
    /// message's header and bytes). Throws `std::invalid_argument` when there is no message to
    /// build from, when the reply names a command identifier other than this request's, and
    /// whatever the reply builder throws (`std::invalid_argument` for an unknown type or
    /// undecodable bytes).
    std::unique_ptr<HighLevelOperations::Commands::CommandReply> BuildReply(const Item& item) const;

private:
    Item Classify(std::unique_ptr<BaseMessage> message);
    void EnsurePending() const;

    std::shared_ptr<CommandReplyBuilder> replyBuilder;
    std::shared_ptr<RequestMap> requestMap;
    int requestId;
    std::shared_ptr<ReplyQueue> replies;
    bool pending = true;
};

}  // namespace Korvo::Plexis::Tessel::Client

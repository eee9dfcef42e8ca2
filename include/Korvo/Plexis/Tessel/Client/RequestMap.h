#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include <Korvo/Plexis/Tessel/Client/BaseMessage.h>
#include <Korvo/Plexis/Tessel/Client/ConcurrentQueue.h>

namespace Korvo::Plexis::Tessel::Client {

/// Told when something is queued on one request's handle, for a caller that does not block a
/// thread per request. `Queued` runs on the reception thread after a reply was queued, with no
/// lock of the client held. `Ended` runs on whichever thread ends the request (see
/// `PendingCommandReply::ItemKind`), possibly under the request map's mutex: it may only take
/// locks of its own that it never holds while calling into the client.
class ReplyListener {
public:
    virtual ~ReplyListener() = default;
    virtual void Queued() = 0;
    virtual void Ended() = 0;
};

/// The reply queue of one request, with what the reception thread checks against each reply:
/// the command identifier the request was sent with, the link it went out on, and the bytes of
/// the replies waiting in it. An empty item is the end mark; `GetEnding` says why it was queued.
class ReplyQueue : public ConcurrentQueue<std::unique_ptr<BaseMessage>> {
public:
    /// Why a request ended without its final reply.
    enum class Ending { None, Cancelled, NotSent, LinkLost, Overflowed };

    ReplyQueue() = default;
    /// `commandGuid`: the identifier of the command sent; `linkLosses`: the messenger's count of
    /// lost links just before it was sent.
    /// `listener`, when given, is told of every reply and ending queued.
    ReplyQueue(std::string commandGuid, std::uint64_t linkLosses,
               std::shared_ptr<ReplyListener> listener = nullptr)
        : commandGuid(std::move(commandGuid)), linkLosses(linkLosses), listener(std::move(listener)) {}

    /// Queues a reply and tells the listener. The reception thread's, under no lock.
    void Deliver(std::unique_ptr<BaseMessage> message);

    /// Ends the request with `ending` unless it has ended already: sets the closed mark and queues
    /// the end mark. Returns whether this call ended it.
    bool End(Ending ending);

    /// Ends the request with `Overflowed` and discards every message waiting in it.
    void Discard();

    Ending GetEnding() const noexcept { return ending.load(); }
    const std::string& CommandGuid() const noexcept { return commandGuid; }
    std::uint64_t LinkLosses() const noexcept { return linkLosses; }

    /// What a message is charged against the budget of waiting bytes: its header and payload and
    /// a fixed allowance for the objects that hold them.
    static std::size_t Charge(const BaseMessage& message);
    /// The bytes charged for the messages waiting; changed by the reception thread when it queues
    /// one and by the handle when it takes one.
    std::atomic<std::size_t> waitingBytes{0};

private:
    const std::string commandGuid;
    const std::uint64_t linkLosses = 0;
    const std::shared_ptr<ReplyListener> listener;
    std::atomic<Ending> ending{Ending::None};
};

/// The reply queue of every request that still waits for an answer, by request identifier.
/// Shared by a `CommandClient` and its request handles, so a handle may outlive the client.
///
/// `requests`, `nextRequestId` and the count of sends in progress are only touched under `mutex`;
/// `active` is atomic and only set to false under `mutex`. Lock order: `mutex` before any reply
/// queue's own mutex, never the other way round.
class RequestMap {
public:
    RequestMap() : requests(10) {}

    /// Cancels whatever is still pending (see `CancelPending`).
    ~RequestMap();

    RequestMap(const RequestMap&) = delete;
    RequestMap& operator=(const RequestMap&) = delete;

    /// While `active`, registers `queue` under a fresh identifier, stores it in `requestId`,
    /// counts the caller as sending until it calls `EndSend`, and returns true; otherwise false.
    /// Identifiers are 0, 1, 2, ..., wrapping around at the 32-bit limit; a wrapped identifier
    /// replaces a stale entry.
    bool BeginSend(std::shared_ptr<ReplyQueue> queue, int& requestId);

    /// The caller that `BeginSend` admitted is no longer sending.
    void EndSend();

    /// Stops accepting requests and releases every waiter: counts the pending requests, clears
    /// `active`, waits until no caller is between `BeginSend` and `EndSend` (so no command goes
    /// out once this returns), then ends each queue as cancelled and clears the map. Returns the
    /// count. Must not be called by a caller between `BeginSend` and `EndSend`.
    std::size_t CancelPending();

    /// Ends with `LinkLost` every pending request sent before the messenger had counted
    /// `linkLosses` lost links, and removes it. Returns how many.
    std::size_t EndSentBefore(std::uint64_t linkLosses);

    /// Removes the entry `requestId` if it still holds `queue` (a handle that gives up).
    void Forget(int requestId, const std::shared_ptr<ReplyQueue>& queue);

    std::atomic<bool> active{true};
    std::unordered_map<int, std::shared_ptr<ReplyQueue>> requests;
    int nextRequestId = 0;
    std::recursive_mutex mutex;

private:
    int sending = 0;
    std::condition_variable_any sendsDone;
};

}  // namespace Korvo::Plexis::Tessel::Client

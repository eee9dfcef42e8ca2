#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <unordered_map>

#include <Korvo/Plexis/Tessel/Client/BaseMessage.h>
#include <Korvo/Plexis/Tessel/Client/ConcurrentQueue.h>

namespace Korvo::Plexis::Tessel::Client {

/// The reply queue of every request that still waits for an answer, by request identifier.
/// Shared by a `CommandClient` and its request handles, so a handle may outlive the client.
///
/// `requests` and `nextRequestId` are only touched under `mutex`; `active` is atomic. Lock order:
/// `mutex` before any reply queue's own mutex, never the other way round.
class RequestMap {
public:
    using ReplyQueue = ConcurrentQueue<std::unique_ptr<BaseMessage>>;

    RequestMap() : requests(10) {}

    /// Cancels whatever is still pending (see `CancelPending`).
    ~RequestMap();

    RequestMap(const RequestMap&) = delete;
    RequestMap& operator=(const RequestMap&) = delete;

    /// Registers `queue` under a fresh identifier and returns it. Identifiers are 0, 1, 2, ...,
    /// wrapping around at the 32-bit limit; a wrapped identifier replaces a stale entry.
    int Register(std::shared_ptr<ReplyQueue> queue);

    /// Stops accepting requests and releases every waiter: counts the pending requests, clears
    /// `active`, then closes each queue, pushes the cancellation mark (`nullptr`) into it and
    /// clears the map. Returns the count.
    std::size_t CancelPending();

    /// Removes the entry `requestId` if it still holds `queue` (a handle that gives up).
    void Forget(int requestId, const std::shared_ptr<ReplyQueue>& queue);

    std::atomic<bool> active{true};
    std::unordered_map<int, std::shared_ptr<ReplyQueue>> requests;
    int nextRequestId = 0;
    std::recursive_mutex mutex;
};

}  // namespace Korvo::Plexis::Tessel::Client

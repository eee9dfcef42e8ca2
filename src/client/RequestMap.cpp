#include <Korvo/Plexis/Tessel/Client/RequestMap.h>

#include <deque>

namespace Korvo::Plexis::Tessel::Client {
namespace {

// Ends every queue of `requests` as cancelled and clears the map. The caller holds the map's
// mutex.
void ReleaseAll(std::unordered_map<int, std::shared_ptr<ReplyQueue>>& requests) {
    for (auto& entry : requests) {
        entry.second->End(ReplyQueue::Ending::Cancelled);
    }
    requests.clear();
}

// Covers the message object, its header string, the transport's frame and the queue's slot:
// a small reply costs about this much beyond its bytes.
constexpr std::size_t kMessageAllowance = 512;

}  // namespace

bool ReplyQueue::End(Ending why) {
    Ending expected = Ending::None;
    if (!ending.compare_exchange_strong(expected, why)) {
        return false;
    }
    Close();
    Push(nullptr);
    if (listener) {
        listener->Ended();
    }
    return true;
}

void ReplyQueue::Deliver(std::unique_ptr<BaseMessage> message) {
    Push(std::move(message));
    if (listener) {
        listener->Queued();
    }
}

void ReplyQueue::Discard() {
    // Only the reception thread queues replies, and it calls this once the queue is out of the
    // map, so nothing is queued in between.
    std::deque<std::unique_ptr<BaseMessage>> dropped = TakeAll();
    std::size_t freed = 0;
    for (const auto& message : dropped) {
        freed += message ? Charge(*message) : 0;
    }
    waitingBytes.fetch_sub(freed);
    End(Ending::Overflowed);
    dropped.clear();  // outside the queue's lock
}

std::size_t ReplyQueue::Charge(const BaseMessage& message) {
    return message.GetHeader().size() + message.DataSize() + kMessageAllowance;
}

RequestMap::~RequestMap() {
    std::lock_guard<std::recursive_mutex> lock(mutex);
    ReleaseAll(requests);
}

bool RequestMap::BeginSend(std::shared_ptr<ReplyQueue> queue, int& requestId) {
    std::lock_guard<std::recursive_mutex> lock(mutex);
    if (!active.load()) {
        return false;
    }
    requestId = nextRequestId;
    requests[requestId] = std::move(queue);
    // Wraps around at the 32-bit limit without signed overflow.
    nextRequestId = static_cast<int>(static_cast<unsigned int>(nextRequestId) + 1u);
    ++sending;
    return true;
}

void RequestMap::EndSend() {
    {
        std::lock_guard<std::recursive_mutex> lock(mutex);
        --sending;
    }
    sendsDone.notify_all();
}

std::size_t RequestMap::CancelPending() {
    std::size_t count;
    {
        std::lock_guard<std::recursive_mutex> lock(mutex);
        count = requests.size();
    }
    std::unique_lock<std::recursive_mutex> lock(mutex);
    active.exchange(false);
    // A request that passed its check of `active` is either still to register (and now will not)
    // or sending; wait for the sends, so that none goes out after this returns.
    sendsDone.wait(lock, [this] { return sending == 0; });
    ReleaseAll(requests);
    return count;
}

std::size_t RequestMap::EndSentBefore(std::uint64_t linkLosses) {
    std::lock_guard<std::recursive_mutex> lock(mutex);
    std::size_t ended = 0;
    for (auto entry = requests.begin(); entry != requests.end();) {
        if (entry->second->LinkLosses() < linkLosses) {
            entry->second->End(ReplyQueue::Ending::LinkLost);
            entry = requests.erase(entry);
            ++ended;
        } else {
            ++entry;
        }
    }
    return ended;
}

void RequestMap::Forget(int requestId, const std::shared_ptr<ReplyQueue>& queue) {
    std::lock_guard<std::recursive_mutex> lock(mutex);
    auto found = requests.find(requestId);
    if (found != requests.end() && found->second == queue) {
        requests.erase(found);
    }
}

}  // namespace Korvo::Plexis::Tessel::Client

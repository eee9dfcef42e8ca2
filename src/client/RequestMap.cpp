#include <Korvo/Plexis/Tessel/Client/RequestMap.h>

namespace Korvo::Plexis::Tessel::Client {
namespace {

// Closes every queue of `requests`, pushes the cancellation mark into it and clears the map.
// The caller holds the map's mutex.
void ReleaseAll(std::unordered_map<int, std::shared_ptr<RequestMap::ReplyQueue>>& requests) {
    for (auto& entry : requests) {
        entry.second->Close();
        entry.second->Push(nullptr);
    }
    requests.clear();
}

}  // namespace

RequestMap::~RequestMap() {
    std::lock_guard<std::recursive_mutex> lock(mutex);
    ReleaseAll(requests);
}

int RequestMap::Register(std::shared_ptr<ReplyQueue> queue) {
    std::lock_guard<std::recursive_mutex> lock(mutex);
    const int requestId = nextRequestId;
    requests[requestId] = std::move(queue);
    // Wraps around at the 32-bit limit without signed overflow.
    nextRequestId = static_cast<int>(static_cast<unsigned int>(nextRequestId) + 1u);
    return requestId;
}

std::size_t RequestMap::CancelPending() {
    std::size_t count;
    {
        std::lock_guard<std::recursive_mutex> lock(mutex);
        count = requests.size();
    }
    active.exchange(false);
    std::lock_guard<std::recursive_mutex> lock(mutex);
    ReleaseAll(requests);
    return count;
}

void RequestMap::Forget(int requestId, const std::shared_ptr<ReplyQueue>& queue) {
    std::lock_guard<std::recursive_mutex> lock(mutex);
    auto found = requests.find(requestId);
    if (found != requests.end() && found->second == queue) {
        requests.erase(found);
    }
}

}  // namespace Korvo::Plexis::Tessel::Client

#pragma once

// What the notification attack tests share: the bytes of a "server added" notification, and a
// client whose deliveries a test can count and wait for.

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include <Korvo/Plexis/Tessel/Client/NotificationClient.h>

#include "faults/FaultSupport.h"

namespace Korvo::Testing {

/// The payload of "server `id` added", its name padded to at least `nameBytes`.
std::string ServerAdded(int id, std::size_t nameBytes = 0);

/// The ids of the "server added" notifications a client delivered, in order.
class Deliveries {
public:
    /// Adds the recording callback to `client`'s list.
    void Attach(Plexis::Tessel::Client::NotificationClient& client);

    void Add(int id);
    bool WaitFor(const std::function<bool(const std::vector<int>&)>& condition,
                 std::chrono::milliseconds limit = kPatience);
    bool WaitForId(int id, std::chrono::milliseconds limit = kPatience);
    std::size_t Count();

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<int> ids;
};

}  // namespace Korvo::Testing

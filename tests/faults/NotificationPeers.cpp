#include "faults/NotificationPeers.h"

#include <algorithm>

#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

namespace Korvo::Testing {

namespace Converters = Plexis::Tessel::Serialization::Thrift::Notifier;

std::string ServerAdded(int id, std::size_t nameBytes) {
    Events::ServerAddedEventArgs args;
    args.serverId = id;
    args.server.name.assign(nameBytes, 'n');
    Converters::Generated::ServerAddedEventArgs wire;
    EXPECT_TRUE(Converters::ServerAddedEventArgsToThriftConverter().To(args, wire).success);
    auto bytes = Common::Serialization::SerializerImpl<Converters::Generated::ServerAddedEventArgs>()
                     .Serialize(wire);
    return {reinterpret_cast<const char*>(bytes->Pointer()), bytes->Size()};
}

void Deliveries::Attach(Plexis::Tessel::Client::NotificationClient& client) {
    auto lock = client.LockHandlers();
    client.serverAddedHandlers.push_back(
        [this](const Events::ServerAddedEventArgs& args) { Add(args.serverId); });
}

void Deliveries::Add(int id) {
    // Notified under the lock: a waiter that sees the id may destroy this object at once.
    std::lock_guard<std::mutex> lock(mutex);
    ids.push_back(id);
    changed.notify_all();
}

bool Deliveries::WaitFor(const std::function<bool(const std::vector<int>&)>& condition,
                         std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> lock(mutex);
    return changed.wait_for(lock, limit, [&] { return condition(ids); });
}

bool Deliveries::WaitForId(int id, std::chrono::milliseconds limit) {
    return WaitFor(
        [id](const std::vector<int>& seen) {
            return std::find(seen.begin(), seen.end(), id) != seen.end();
        },
        limit);
}

std::size_t Deliveries::Count() {
    std::lock_guard<std::mutex> lock(mutex);
    return ids.size();
}

}  // namespace Korvo::Testing

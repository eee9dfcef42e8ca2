// A flood of notifications while the application's callback is busy: the client holds a bounded
// number, and what it has no room for is counted and logged instead of vanishing unseen.

#include <condition_variable>
#include <mutex>
#include <numeric>

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

#include "faults/FaultSupport.h"

namespace Korvo::Testing {
namespace {

namespace Converters = Plexis::Tessel::Serialization::Thrift::Notifier;
namespace Wire = Converters::Generated;

// The bytes a server publishes for "server `id` added".
std::string ServerAdded(int id) {
    Events::ServerAddedEventArgs args;
    args.serverId = id;
    Wire::ServerAddedEventArgs wire;
    EXPECT_TRUE(Converters::ServerAddedEventArgsToThriftConverter().To(args, wire).success);
    auto bytes = Common::Serialization::SerializerImpl<Wire::ServerAddedEventArgs>().Serialize(wire);
    return {reinterpret_cast<const char*>(bytes->Pointer()), bytes->Size()};
}

TEST(NotificationFloodTest, ASlowCallbackUnderAFloodKeepsTheQueueBoundedAndCountsAndLogsDrops) {
    constexpr int kLimit = 200;
    constexpr int kFlood = 20000;
    auto log = RecordedLogger("Messaging", ILogger::Error);
    PublisherPeer publisher(0);  // queues without limit: whatever is lost, the client dropped
    std::mutex mutex;
    std::condition_variable changed;
    bool released = false;
    std::vector<int> seen;
    TransportOptions options;
    options.receiveHighWaterMark = kLimit;
    NotificationClient client({Common::Messaging::EndPoint(publisher.Address())}, {}, options);
    {
        auto handlersLock = client.LockHandlers();
        client.serverAddedHandlers.push_back([&](const Events::ServerAddedEventArgs& args) {
            std::unique_lock<std::mutex> lock(mutex);
            seen.push_back(args.serverId);
            changed.notify_all();
            changed.wait(lock, [&] { return released; });  // busy until the test lets it go
        });
    }
    auto waitForSeen = [&](std::size_t count) {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, kPatience, [&] { return seen.size() >= count; });
    };
    ASSERT_TRUE(publisher.WaitForSubscriptions({""}));

    publisher.Publish("ServerStatus", "ServerAdded", ServerAdded(0));
    ASSERT_TRUE(waitForSeen(1));  // the callback is busy from here on
    for (int id = 1; id <= kFlood; ++id) {
        publisher.Publish("ServerStatus", "ServerAdded", ServerAdded(id));
    }
    auto& subscription = client.GetSubscription();
    const std::uint64_t excess = kFlood - kLimit;
    ASSERT_TRUE(Eventually([&] { return subscription.GetDroppedCount() >= excess; }));
    EXPECT_EQ(subscription.GetDroppedCount(), excess);
    EXPECT_EQ(CountLogged(*log, "200 notifications already wait for the application; dropping"),
              1);

    {
        std::lock_guard<std::mutex> lock(mutex);
        released = true;
    }
    changed.notify_all();
    ASSERT_TRUE(waitForSeen(kLimit + 1));
    // The oldest are kept, in order; the newest were refused.
    std::vector<int> expected(kLimit + 1);
    std::iota(expected.begin(), expected.end(), 0);
    {
        std::lock_guard<std::mutex> lock(mutex);
        EXPECT_EQ(seen, expected);
    }
    EXPECT_TRUE(Eventually([&] {
        return CountLogged(*log, "caught up after " + std::to_string(excess) + " notifications") ==
               1;
    }));
    EXPECT_EQ(subscription.GetDroppedCount(), excess);

    // Once caught up, nothing is dropped any more.
    publisher.Publish("ServerStatus", "ServerAdded", ServerAdded(kFlood + 1));
    ASSERT_TRUE(waitForSeen(kLimit + 2));
    EXPECT_EQ(subscription.GetDroppedCount(), excess);
}

}  // namespace
}  // namespace Korvo::Testing

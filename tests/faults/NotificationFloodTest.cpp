// A flood of notifications while the application's callback is busy: the client holds a bounded
// number of bytes, and what it has no room for is counted and logged instead of vanishing unseen.

#include <condition_variable>
#include <mutex>
#include <numeric>
#include <thread>

#include "faults/FaultSupport.h"

namespace Korvo::Testing {
namespace {

TEST(NotificationFloodTest, ASlowCallbackUnderAFloodKeepsTheQueueBoundedAndCountsAndLogsDrops) {
    constexpr int kFlood = 20000;
    auto log = RecordedLogger("Messaging", ILogger::Error);
    PublisherPeer publisher(0);  // queues without limit: whatever is lost, the client dropped
    std::mutex mutex;
    std::condition_variable changed;
    bool released = false;
    std::vector<int> seen;
    TransportOptions options;
    options.notificationQueueBytes = 64 << 10;  // room for about 200 of them
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
    ASSERT_TRUE(Eventually([&] { return subscription.GetDroppedCount() > 0; }));
    ASSERT_TRUE(Eventually([&] {
        // The queue is full and nothing else arrives: each notification is queued or dropped.
        const auto dropped = subscription.GetDroppedCount();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        return subscription.GetDroppedCount() == dropped;
    }));
    const std::uint64_t excess = subscription.GetDroppedCount();
    const std::size_t kept = kFlood - excess;
    EXPECT_GT(kept, 100u);
    EXPECT_LT(kept, 300u);
    EXPECT_EQ(CountLogged(*log, "dropping what arrives until it catches up"), 1);

    {
        std::lock_guard<std::mutex> lock(mutex);
        released = true;
    }
    changed.notify_all();
    ASSERT_TRUE(waitForSeen(kept + 1));
    // The oldest are kept, in order; the newest were refused.
    std::vector<int> expected(kept + 1);
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
    ASSERT_TRUE(waitForSeen(kept + 2));
    EXPECT_EQ(subscription.GetDroppedCount(), excess);
}

}  // namespace
}  // namespace Korvo::Testing

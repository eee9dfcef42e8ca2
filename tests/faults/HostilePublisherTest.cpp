// A publisher that floods a notification client at full speed with what a server should never
// send: notifications faster than the application reads them, larger than allowed, malformed or
// undecodable. The client must stay within its memory bound, account for what it drops, keep its
// log readable, and deliver again as soon as the flood stops.

#include <algorithm>
#include <cstdio>
#include <functional>
#include <thread>

#include "faults/FaultSupport.h"

namespace Korvo::Testing {
namespace {

using Clock = std::chrono::steady_clock;
using Plexis::Tessel::Client::NotificationClient;

struct Flood {
    const char* name;
    std::function<void(TransportOptions&)> configure;
    std::chrono::milliseconds callbackTime;  // how long the application takes per notification
    long atLeast;                            // notifications published, however long it takes
    // Publishes the n-th message of the flood; returns whether it was a malformed envelope.
    std::function<bool(PublisherPeer&, long n)> publish;
    bool exactAccount;  // every notification published reaches the subscription's socket
};

const std::string kLarge = ServerAdded(1, 1 << 20);
const std::string kSmall = ServerAdded(1);

const std::vector<Flood> kFloods{
    // 400 MiB in all, far more than the application can take meanwhile.
    {"1 MiB notifications to a 50 ms callback", [](TransportOptions&) {},
     std::chrono::milliseconds(50), 400,
     [](PublisherPeer& peer, long) {
         peer.Publish("ServerStatus", "ServerAdded", kLarge);
         return false;
     },
     true},
    {"small notifications to a 1 ms callback, queue of 64 KiB",
     [](TransportOptions& options) { options.notificationQueueBytes = 64 << 10; },
     std::chrono::milliseconds(1), 0,
     [](PublisherPeer& peer, long) {
         peer.Publish("ServerStatus", "ServerAdded", kSmall);
         return false;
     },
     true},
    {"malformed, unknown and undecodable notifications", [](TransportOptions&) {},
     std::chrono::milliseconds(0), 0,
     [](PublisherPeer& peer, long n) {
         switch (n % 3) {
             case 0:
                 peer.PublishFrames({"ServerStatus", "ServerAdded"});
                 return true;
             case 1:
                 peer.Publish("ServerStatus", "NoSuchNotification", kSmall);
                 return false;
             default:
                 peer.Publish("ServerStatus", "ServerAdded", std::string(40, '\xff'));
                 return false;
         }
     },
     false},
    {"notifications over the size limit",
     [](TransportOptions& options) { options.maxNotificationSize = 64 << 10; },
     std::chrono::milliseconds(0), 0,
     [](PublisherPeer& peer, long) {
         peer.Publish("ServerStatus", "ServerAdded", kLarge);
         return false;
     },
     false},
};

TEST(HostilePublisherTest, AFloodKeepsMemoryAndLogBoundedAccountsForDropsAndDeliveryResumes) {
    for (const Flood& flood : kFloods) {
        SCOPED_TRACE(flood.name);
        auto messagingLog = RecordedLogger("Messaging", ILogger::Error);
        auto clientLog = RecordedLogger("NotificationClient", ILogger::Error);
        PublisherPeer publisher(4, true);  // waits for room: nothing is lost on its side
        TransportOptions options = QuickOptions();
        flood.configure(options);
        NotificationClient client({Common::Messaging::EndPoint(publisher.Address())}, {}, options);
        Deliveries delivered;
        {
            auto lock = client.LockHandlers();
            client.serverAddedHandlers.push_back([&](const Events::ServerAddedEventArgs& args) {
                std::this_thread::sleep_for(flood.callbackTime);
                delivered.Add(args.serverId);
            });
        }
        ASSERT_TRUE(publisher.WaitForSubscriptions({""}));

        const auto start = Clock::now();
        const auto end = start + AttackDuration();
        std::atomic<long> published{0};
        long malformed = 0;
        std::thread flooder([&] {
            while (Clock::now() < end || published < flood.atLeast) {
                malformed += flood.publish(publisher, published.load()) ? 1 : 0;
                ++published;
            }
        });
        long long peak = 0;
        while (Clock::now() < end || published < flood.atLeast) {
            peak = std::max(peak, ResidentBytes());
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        flooder.join();
        peak = std::max(peak, ResidentBytes());
#ifndef __SANITIZE_ADDRESS__  // AddressSanitizer keeps freed memory in quarantine: RSS says nothing
        EXPECT_LT(peak, kResidentCap);
#endif

        // Delivery resumes: a notification published after the flood arrives (a dropped link
        // comes back by itself, so it is published again until it does).
        const auto& subscription = client.GetSubscription();
        bool resumed = false;
        long markers = 0;
        for (auto give = Clock::now() + kPatience; !resumed && Clock::now() < give; ++markers) {
            publisher.Publish("ServerStatus", "ServerAdded", ServerAdded(-1));
            resumed = delivered.WaitForId(-1, std::chrono::milliseconds(200));
        }
        ASSERT_TRUE(resumed);
        const double seconds =
            std::chrono::duration<double>(Clock::now() - start).count();

        // Every notification published reached the client's socket, so each one was either
        // delivered or counted as dropped (the last marker came after all of them).
        const auto dropped = subscription.GetDroppedCount();
        if (flood.exactAccount) {
            const long total = published.load() + markers;
            EXPECT_TRUE(delivered.WaitFor([&](const std::vector<int>& ids) {
                return static_cast<long>(ids.size() + subscription.GetDroppedCount()) >= total;
            }));
            EXPECT_EQ(static_cast<long>(delivered.Count() + subscription.GetDroppedCount()),
                      total);
        }
        EXPECT_GE(static_cast<long>(dropped), malformed);

        // Repeated lines are held to a few a second, whatever the flood.
        const auto lines = messagingLog->Texts().size() + clientLog->Texts().size();
        EXPECT_LT(static_cast<double>(lines), 20 * (seconds + 1)) << lines << " lines";

        // Once the flood is over the client is idle again: nothing spins.
        const auto cpuBefore = CpuTime();
        std::this_thread::sleep_for(std::chrono::seconds(1));
        const auto idle = CpuTime() - cpuBefore;
        EXPECT_LT(idle.count(), 50) << "ms of CPU in one idle second";

        std::printf("[ flood    ] %s: %ld published (%ld malformed), %zu delivered, %llu dropped, "
                    "peak RSS %lld MiB, %zu log lines in %.1f s, idle CPU %lld ms/s\n",
                    flood.name, published.load(), malformed, delivered.Count(),
                    static_cast<unsigned long long>(dropped), peak >> 20, lines, seconds,
                    static_cast<long long>(idle.count()));
    }
}

}  // namespace
}  // namespace Korvo::Testing

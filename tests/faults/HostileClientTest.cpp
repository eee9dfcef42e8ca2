// tessel-sim against peers that abuse it for the attack duration: one that asks for listings at
// full speed and never reads a reply (with and without a reply delay), and subscribers that come
// and go. Its resident memory must stay under the cap, it must not die, and a well-behaved client
// must be answered afterwards.

#include <atomic>
#include <iostream>
#include <thread>

#include <zmq.hpp>

#include "faults/FaultSupport.h"
#include "faults/SimulatorProcess.h"

namespace Korvo::Testing {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Sends clip listings as fast as the simulator takes them and reads nothing: its receive queue and
// kernel buffer are as small as they go, so every reply stays on the simulator's side.
void ListWithoutReading(const std::string& endpoint, const std::atomic<bool>& stop) {
    DealerPeer peer(endpoint, /*slow=*/true);
    const std::string payload =
        Encoded("GetClipsCommand", NewParams<Commands::GetClipsCommandParams>());
    for (std::int32_t ticket = 0; !stop;) {
        if (peer.TrySend({TicketBytes(ticket), "GetClipsCommand", payload})) {
            ++ticket;
        } else {
            std::this_thread::sleep_for(1ms);
        }
    }
}

// Rounds of subscribers to the same thousand long topics, each closed once connected.
void SubscribeAndLeave(const std::string& endpoint, const std::atomic<bool>& stop) {
    zmq::context_t context;
    while (!stop) {
        std::vector<zmq::socket_t> peers;
        for (int peer = 0; peer < 8; ++peer) {
            peers.emplace_back(context, zmq::socket_type::sub);
            peers.back().set(zmq::sockopt::linger, 0);
            for (int topic = 0; topic < 1000; ++topic) {
                peers.back().set(zmq::sockopt::subscribe,
                                 "ClipEvents/replay-" + std::to_string(topic) +
                                     std::string(200, 'x'));
            }
            peers.back().connect(endpoint);
        }
        std::this_thread::sleep_for(20ms);
    }
}

TEST(HostileClientTest, TheSimulatorStaysBoundedAliveAndServingUnderEachHostilePeer) {
    if (kSanitized) {
        GTEST_SKIP() << "a sanitizer build's simulator is too slow and its memory says nothing";
    }
    enum Attack { Lister, Subscriber };
    struct Case {
        const char* name;
        std::vector<std::string> arguments;
        Attack attack;
    };
    const std::vector<Case> cases = {
        {"a peer that never reads", {"--clips", "1000"}, Lister},
        {"a peer that never reads, replies delayed",
         {"--clips", "1000", "--reply-delay-ms", "1000"},
         Lister},
        {"subscribers that come and go", {}, Subscriber},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        SimulatorProcess server(test.arguments);
        const long long before = ResidentBytes(server.Pid());
        const auto cpuBefore = CpuTime(server.Pid());
        std::atomic<bool> stop{false};
        std::thread peer([&] {
            if (test.attack == Lister) {
                ListWithoutReading(server.CommandEndpoint(), stop);
            } else {
                SubscribeAndLeave(server.NotificationEndpoint(), stop);
            }
        });
        long long peak = 0;
        const auto end = Clock::now() + AttackDuration();
        while (Clock::now() < end && peak < kResidentCap) {
            peak = std::max(peak, ResidentBytes(server.Pid()));
            std::this_thread::sleep_for(20ms);
        }
        stop = true;
        peer.join();
        std::this_thread::sleep_for(500ms);  // what the peer left behind, once it has gone
        const long long after = ResidentBytes(server.Pid());
        std::cout << "[ RSS      ] " << test.name << ": " << (before >> 20) << " MiB at start, "
                  << (peak >> 20) << " MiB at peak, " << (after >> 20) << " MiB after; "
                  << (CpuTime(server.Pid()) - cpuBefore).count() << " ms of CPU\n";
        EXPECT_LT(peak, kResidentCap);
        EXPECT_LT(after, kResidentCap);
        ASSERT_TRUE(server.Running());
        auto client = DataClientTo(server.CommandEndpoint());
        ASSERT_TRUE(AwaitConnected(*client));
        // Commands the peer left in flight may still fill the bounded queues for a moment.
        EXPECT_TRUE(Eventually([&] { return PingAnswered(*client, 2s); }));
    }
}

}  // namespace
}  // namespace Korvo::Testing

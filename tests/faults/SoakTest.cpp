// Every fault at once against one tessel-sim process: a peer that asks for listings and never
// reads, replies delayed, dropped, garbled and duplicated, a subscriber whose callback is slow,
// the server taken off the network and restarted, while an application keeps pinging. Both
// processes must stay under the memory cap with a steady thread count, and the server must still
// answer once the faults stop. CI runs it for AttackDuration() (2 s); scripts/soak.sh for 60 s.

#include <csignal>
#include <cstdio>

#include "faults/FaultSupport.h"
#include "faults/SimulatorProcess.h"

namespace Korvo::Testing {
namespace {

using namespace Plexis::Tessel::Client;

// A client that sends GetClipsCommand as fast as its socket takes it until `deadline` and never
// reads a reply.
void ListGreedily(const std::string& endpoint, std::chrono::steady_clock::time_point deadline) {
    DealerPeer peer(endpoint);
    const std::string payload =
        Encoded("GetClipsCommand", NewParams<Commands::GetClipsCommandParams>());
    for (int ticket = 0; std::chrono::steady_clock::now() < deadline;) {
        if (peer.TrySend({TicketBytes(ticket), "GetClipsCommand", payload})) {
            ++ticket;
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
}

struct Peak {
    long long resident = 0;
    int threadsLow = 1 << 30;
    int threadsHigh = 0;

    void Sample(int pid) {
        resident = std::max(resident, ResidentBytes(pid));
        const int threads = ThreadCount(pid);
        threadsLow = std::min(threadsLow, threads);
        threadsHigh = std::max(threadsHigh, threads);
    }
};

TEST(SoakTest, EveryFaultAtOnceKeepsBothSidesBoundedAndTheServerAnswering) {
    if (kSanitized) {
        GTEST_SKIP() << "a sanitizer build's simulator is too slow and its memory says nothing";
    }
    const auto duration = AttackDuration();
    SimulatorProcess simulator({"--clips", "2000", "--part-size", "20", "--reply-delay-ms", "1",
                                "--reply-jitter-ms", "5", "--drop-fraction", "0.05",
                                "--malformed-fraction", "0.05", "--duplicate-fraction", "0.05"});
    const int baselineThreads = ThreadCount();

    std::atomic<long> answered{0}, unanswered{0}, delivered{0};
    Peak client, server;
    {
        auto commands = DataClientTo(simulator.CommandEndpoint());
        NotificationClient notifications(
            {Common::Messaging::EndPoint(simulator.NotificationEndpoint())}, {}, QuickOptions());
        {
            auto lock = notifications.LockHandlers();
            notifications.channelStatusHandlers.push_back(
                [&](Plexis::Notification::ChannelStatusEvent::Type,
                    const Plexis::Notification::ChannelStatusEventArgs&) {
                    ++delivered;
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));  // a slow consumer
                });
        }
        const auto deadline = std::chrono::steady_clock::now() + duration;
        std::thread greedy([&] { ListGreedily(simulator.CommandEndpoint(), deadline); });
        std::thread pinger([&] {
            while (std::chrono::steady_clock::now() < deadline) {
                auto pending = commands->Request("PingCommand", Ping());
                const bool ok = pending && pending->Next(std::chrono::milliseconds(500)).kind ==
                                               Kind::Final;
                ++(ok ? answered : unanswered);
            }
        });
        // Take the server off the network and back every second, restart it every five.
        for (int tick = 1; std::chrono::steady_clock::now() < deadline; ++tick) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));  // the sampling period
            client.Sample(0);
            server.Sample(simulator.Pid());
            if (tick % 10 == 5) {
                simulator.Signal(SIGUSR1);
            } else if (tick % 10 == 0) {
                simulator.Signal(SIGUSR2);
            }
            if (tick % 50 == 0) {
                simulator.Signal(SIGHUP);
            }
        }
        greedy.join();
        pinger.join();
        client.Sample(0);
        server.Sample(simulator.Pid());
    }

    std::printf("soak: %lld s; RSS peak client %lld MiB, tessel-sim %lld MiB; threads client "
                "%d..%d, tessel-sim %d..%d; pings answered %ld, unanswered %ld; channel "
                "notifications delivered %ld\n",
                static_cast<long long>(duration.count() / 1000), client.resident >> 20,
                server.resident >> 20, client.threadsLow, client.threadsHigh, server.threadsLow,
                server.threadsHigh, answered.load(), unanswered.load(), delivered.load());
    EXPECT_LT(client.resident, kResidentCap);
    EXPECT_LT(server.resident, kResidentCap);
    // Every thread the clients started has ended with them.
    EXPECT_TRUE(Eventually([&] { return ThreadCount() == baselineThreads; }));
    // The faults are over: the server still answers a well-behaved client.
    simulator.Signal(SIGUSR2);
    auto fresh = DataClientTo(simulator.CommandEndpoint());
    EXPECT_TRUE(Eventually([&] { return PingAnswered(*fresh, std::chrono::seconds(2)); }));
}

}  // namespace
}  // namespace Korvo::Testing

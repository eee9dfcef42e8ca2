// A real server process that dies, freezes or comes back on the same port, a server whose key is
// not the one the client was given, and a client destroyed under load: no caller waits forever
// and the link comes back by itself.

#include <atomic>
#include <thread>

#include "faults/FaultSupport.h"
#include "faults/SimulatorProcess.h"
#include "support/RecordingLogger.h"

namespace Korvo::Testing {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Common::Messaging::EndPoint;
using Common::Messaging::Client::Subscription;

TEST(ServerFaultsTest, AKilledServerEndsEveryWaiterAtOnceAsLinkLostAndLaterCommandsAsNotSent) {
    SimulatorProcess server({"--silent"});  // reads every command, answers none
    StateLog states;
    auto client = DataClientTo(server.CommandEndpoint(), QuickOptions(), &states);
    ASSERT_TRUE(states.WaitFor(ConnectionState::Connected));

    // Even waiters have a long time limit; odd ones wait without one.
    constexpr int kWaiters = 16;
    std::vector<std::unique_ptr<Pending>> handles;
    for (int i = 0; i < kWaiters; ++i) {
        handles.push_back(client->Request("PingCommand", Ping()));
        ASSERT_NE(handles.back(), nullptr);
    }
    std::vector<std::vector<Kind>> endings(kWaiters);
    std::vector<std::thread> waiters;
    for (int i = 0; i < kWaiters; ++i) {
        waiters.emplace_back([&, i] {
            endings[i].push_back(i % 2 == 0 ? handles[i]->Next(kPatience).kind
                                            : handles[i]->Next().kind);
        });
    }

    // From here to the joins no ASSERT: a test that returned early would leave threads running.
    const auto killed = Clock::now();
    server.Kill();
    for (auto& thread : waiters) {
        thread.join();
    }
    EXPECT_LT(Clock::now() - killed, 10s);  // far from the time limit
    for (int i = 0; i < kWaiters; ++i) {
        EXPECT_EQ(endings[i], std::vector<Kind>{Kind::LinkLost}) << "waiter " << i;
        EXPECT_FALSE(handles[i]->IsPending());
    }
    // A command for the dead server is not sent, and says so at once.
    auto afterDeath = client->Request("PingCommand", Ping());
    ASSERT_NE(afterDeath, nullptr);
    EXPECT_EQ(afterDeath->Next(0ms).kind, Kind::NotSent);

    const auto stopping = Clock::now();
    client->Stop();
    EXPECT_LT(Clock::now() - stopping, 5s);
}

TEST(ServerFaultsTest, AFrozenServerShowsTheLinkDownEndsItsWaitersAndAnswersOnceResumed) {
    SimulatorProcess server;
    StateLog states;
    auto client = DataClientTo(server.CommandEndpoint(), QuickOptions(), &states);
    ASSERT_TRUE(states.WaitFor(ConnectionState::Connected));
    ASSERT_TRUE(PingAnswered(*client));

    server.Freeze();
    // The link still looks up, so the command is sent; nobody reads it.
    auto frozen = client->Request("PingCommand", Ping());
    ASSERT_NE(frozen, nullptr);
    EXPECT_EQ(frozen->Next(1s).kind, Kind::TimedOut);
    // TCP sees nothing wrong with a stopped process; the unanswered heartbeats do.
    ASSERT_TRUE(states.WaitFor(ConnectionState::Reconnecting));
    EXPECT_NE(client->GetConnectionState(), ConnectionState::Connected);
    // The command of the frozen time left on a connection that is gone: it can never be answered.
    EXPECT_EQ(frozen->Next(kPatience).kind, Kind::LinkLost);

    server.Resume();
    ASSERT_TRUE(states.WaitFor(ConnectionState::Connected, 2));
    EXPECT_TRUE(PingAnswered(*client));
}

TEST(ServerFaultsTest, AServerRestartedOnTheSamePortIsReconnectedToWithoutHelp) {
    auto first = std::make_unique<SimulatorProcess>();
    const std::string commands = first->CommandEndpoint();
    const std::string notifications = first->NotificationEndpoint();
    StateLog commandStates;
    StateLog notificationStates;
    auto client = DataClientTo(commands, QuickOptions(), &commandStates);
    Subscription subscription({EndPoint(notifications)}, {}, QuickOptions(),
                              [&](const EndPoint&, ConnectionState state) {
                                  notificationStates.Record(state);
                              });
    ASSERT_TRUE(commandStates.WaitFor(ConnectionState::Connected));
    ASSERT_TRUE(notificationStates.WaitFor(ConnectionState::Connected));
    ASSERT_TRUE(PingAnswered(*client));

    first->Kill();
    ASSERT_TRUE(commandStates.WaitFor(ConnectionState::Reconnecting));
    ASSERT_TRUE(notificationStates.WaitFor(ConnectionState::Reconnecting));

    SimulatorProcess second({"--commands", commands, "--notifications", notifications});
    ASSERT_TRUE(commandStates.WaitFor(ConnectionState::Connected, 2));
    ASSERT_TRUE(notificationStates.WaitFor(ConnectionState::Connected, 2));
    EXPECT_TRUE(PingAnswered(*client));

    const std::vector<ConnectionState> expected = {
        ConnectionState::Connected, ConnectionState::Reconnecting, ConnectionState::Connected};
    EXPECT_EQ(commandStates.Seen(), expected);
    EXPECT_EQ(notificationStates.Seen(), expected);
}

TEST(ServerFaultsTest, AWrongServerKeyLetsNothingThroughAndIsLoggedOncePerEndpoint) {
    SimulatorOptions options;
    options.clips = 5;
    options.curveSecretKey = Plexis::Tessel::Simulator::GenerateCurveKeyPair().second;
    Simulator server(options);
    const std::string address =
        server.CommandEndpoint().substr(0, server.CommandEndpoint().find(';'));
    const std::string wrongKey = Plexis::Tessel::Simulator::GenerateCurveKeyPair().first;

    auto log = RecordedLogger("Messaging", ILogger::Trace);
    StateLog states;
    auto client = DataClientTo(address + ";curve=" + wrongKey, QuickOptions(), &states);
    // The transport retries several times a second; only the first failure is an error.
    const std::string failed = "LogHandshakeFailure: the handshake with " + address + " failed";
    ASSERT_TRUE(Eventually([&] { return CountLogged(*log, failed) >= 4; }));
    int errors = 0;
    for (const auto& record : log->Records()) {
        errors += record.level == ILogger::Error && record.text.rfind(failed, 0) == 0 ? 1 : 0;
    }
    EXPECT_EQ(errors, 1);

    auto pending = client->Request("PingCommand", Ping());
    ASSERT_NE(pending, nullptr);
    EXPECT_EQ(pending->Next(0ms).kind, Kind::NotSent);
    EXPECT_EQ(CountLogged(*log, "Send: command PingCommand (ticket 0) not sent"), 1);
    EXPECT_EQ(client->GetConnectionState(), ConnectionState::Connecting);
    EXPECT_TRUE(states.Seen().empty());
    EXPECT_EQ(server.GetStatistics().commandsReceived, 0u);

    // The right key, same server: answered, and its own endpoint's failures are its own.
    auto rightClient = DataClientTo(server.CommandEndpoint());
    ASSERT_TRUE(AwaitConnected(*rightClient));
    EXPECT_TRUE(PingAnswered(*rightClient));
}

TEST(ServerFaultsTest, DestroyingAClientWithAThousandRequestsInFlightReleasesEveryWaiter) {
    SimulatorProcess server({"--silent"});
    StateLog states;
    auto client = DataClientTo(server.CommandEndpoint(), QuickOptions(), &states);
    ASSERT_TRUE(states.WaitFor(ConnectionState::Connected));

    // Four threads send 250 requests each; eight threads wait on them without a time-out.
    constexpr int kSenders = 4;
    constexpr int kPerSender = 250;
    constexpr int kWaiters = 8;
    std::vector<std::unique_ptr<Pending>> handles(kSenders * kPerSender);
    std::vector<std::thread> senders;
    for (int s = 0; s < kSenders; ++s) {
        senders.emplace_back([&, s] {
            for (int i = 0; i < kPerSender; ++i) {
                handles[s * kPerSender + i] = client->Request("PingCommand", Ping());
            }
        });
    }
    for (auto& thread : senders) {
        thread.join();
    }
    for (const auto& handle : handles) {
        ASSERT_NE(handle, nullptr);
    }
    std::atomic<int> cancelled{0};
    std::atomic<int> other{0};
    std::vector<std::thread> waiters;
    for (int w = 0; w < kWaiters; ++w) {
        waiters.emplace_back([&, w] {
            for (std::size_t i = w; i < handles.size(); i += kWaiters) {
                (handles[i]->Next().kind == Kind::Cancelled ? cancelled : other)++;
            }
        });
    }

    const auto destroying = Clock::now();
    client.reset();
    EXPECT_LT(Clock::now() - destroying, 5s);
    for (auto& thread : waiters) {
        thread.join();
    }
    EXPECT_EQ(cancelled.load(), kSenders * kPerSender);
    EXPECT_EQ(other.load(), 0);
    // The handles outlive their client and stay safe to use.
    for (const auto& handle : handles) {
        EXPECT_FALSE(handle->IsPending());
    }
}

}  // namespace
}  // namespace Korvo::Testing

// Connection over real sockets: every outcome against the simulator, a tessel-sim process or a
// scripted server; callbacks once each, on the callback thread, never waiting there; joined
// listings; the latest-value lane under a slow server.

#include <atomic>
#include <future>
#include <set>
#include <thread>

#include <Korvo/Plexis/Tessel/Client/Connection.h>

#include "faults/FaultSupport.h"
#include "faults/SimulatorProcess.h"
#include "support/SimulatorSession.h"
#include "support/ZmqPeers.h"

namespace Korvo::Testing {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Plexis::Tessel::Client::CallOptions;
using Plexis::Tessel::Client::Connection;
using Plexis::Tessel::Client::ConnectionOptions;
using Plexis::Tessel::Client::Operation;
using Plexis::Tessel::Client::Outcome;
using ChannelId = Plexis::Data::Channels::Guid;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr auto kLaneDuration = 1500ms;
#else
constexpr auto kLaneDuration = 5000ms;
#endif

ConnectionOptions To(const std::string& endpoint, std::chrono::milliseconds timeLimit = 30s) {
    ConnectionOptions options;
    options.name = "test";
    options.commandEndPoint = endpoint;
    options.timeLimit = timeLimit;
    options.transport = QuickOptions();
    return options;
}

// The compact bytes of a reply record that names `guid` as its command and holds nothing else.
std::string Naming(const std::string& guid) {
    return std::string("\x1c\x18") + static_cast<char>(guid.size()) + guid + '\0' + '\0';
}

// Counts the completion callbacks of operations, and whether any ran twice or elsewhere than on
// the callback thread of one connection.
struct Completions {
    template <class Params>
    CallOptions<Params> Options() {
        CallOptions<Params> options;
        options.onDone = [this](const Operation<Params>& operation) {
            std::lock_guard<std::mutex> lock(mutex);
            threads.insert(std::this_thread::get_id());
            if (!guids.insert(operation.CommandGuid().GetValue()).second) {
                ++twice;
            }
            try {
                operation.Wait();
            } catch (const std::logic_error&) {
                ++waitsRefused;
            }
            changed.notify_all();
        };
        return options;
    }

    bool WaitFor(std::size_t count) {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, kPatience, [&] { return guids.size() >= count; });
    }

    std::mutex mutex;
    std::condition_variable changed;
    std::set<std::string> guids;
    std::set<std::thread::id> threads;
    int twice = 0;
    int waitsRefused = 0;
};

// One ping taken by a scripted server: whom to answer, under which ticket, for which command.
struct Taken {
    std::string identity;
    int ticket = 0;
};

Taken Take(RouterPeer& server) {
    const auto command = server.Receive();
    EXPECT_TRUE(command);
    return command ? Taken{(*command)[0], TicketOf((*command)[1])} : Taken{};
}

TEST(ConnectionTest, ATypedCallIsAnsweredWithItsReplyClassAndAFreshCommandIdentifier) {
    SimulatorSession session;
    Connection connection(To(session.simulator->CommandEndpoint()));
    ASSERT_TRUE(connection.WaitConnected(kPatience));
    Completions done;

    // One command of each family through the one link; the identifiers are filled in.
    auto ping = connection.Send(Commands::PingCommandParams{}, done.Options<Commands::PingCommandParams>());
    Commands::PlayCommandParams playParams;
    playParams.players = {ChannelId::PlayerOf(1, 0)};
    auto play = connection.Send(playParams, done.Options<Commands::PlayCommandParams>());
    EXPECT_EQ(ping.Wait(), Outcome::Replied) << ping.Reason();
    EXPECT_EQ(play.Wait(), Outcome::Replied) << play.Reason();
    ASSERT_NE(ping.Get<Commands::SuccessReply>(), nullptr);
    ASSERT_NE(play.Get<Commands::ChannelCommandReply>(), nullptr);
    EXPECT_EQ(play.Get<Commands::FailureReply>(), nullptr);
    EXPECT_FALSE(ping.CommandGuid().GetValue().empty());
    EXPECT_NE(ping.CommandGuid(), play.CommandGuid());
    EXPECT_EQ(ping.GetReply()->commandGuid, ping.CommandGuid());

    // A callback may send: it runs under no lock of the library, so this neither deadlocks nor
    // shows an inverted lock order to ThreadSanitizer.
    std::promise<Outcome> chained;
    CallOptions<Commands::PingCommandParams> chaining;
    chaining.onDone = [&](const Operation<Commands::PingCommandParams>&) {
        CallOptions<Commands::PingCommandParams> last;
        last.onDone = [&](const Operation<Commands::PingCommandParams>& operation) {
            chained.set_value(operation.GetOutcome());
        };
        connection.Send(Commands::PingCommandParams{}, last);
    };
    connection.Send(Commands::PingCommandParams{}, chaining);
    auto chainedOutcome = chained.get_future();
    ASSERT_EQ(chainedOutcome.wait_for(kPatience), std::future_status::ready);
    EXPECT_EQ(chainedOutcome.get(), Outcome::Replied);

    // A given identifier is kept.
    auto named = NewParams<Commands::PingCommandParams>();
    const auto guid = named.commandGuid;
    EXPECT_EQ(connection.Send(named).CommandGuid(), guid);

    ASSERT_TRUE(done.WaitFor(2));
    std::lock_guard<std::mutex> lock(done.mutex);
    EXPECT_EQ(done.twice, 0);
    EXPECT_EQ(done.threads.size(), 1u);
    EXPECT_EQ(done.threads.count(std::this_thread::get_id()), 0u);
    EXPECT_EQ(done.waitsRefused, 2);  // a wait inside a callback is refused, not a deadlock
}

TEST(ConnectionTest, AKilledServerEndsCommandsAsLinkLostAtOnceAndLaterOnesAsNotSent) {
    SimulatorProcess server({"--silent"});
    Connection connection(To(server.CommandEndpoint(), 60s));
    ASSERT_TRUE(connection.WaitConnected(kPatience));
    Completions done;
    std::vector<Operation<Commands::PingCommandParams>> sent;
    for (int i = 0; i < 8; ++i) {
        sent.push_back(connection.Send(Commands::PingCommandParams{},
                                       done.Options<Commands::PingCommandParams>()));
    }

    const auto killed = Clock::now();
    server.Kill();
    for (auto& operation : sent) {
        EXPECT_EQ(operation.Wait(), Outcome::LinkLost) << operation.Reason();
    }
    EXPECT_LT(Clock::now() - killed, 10s);  // far from the 60 s time limit

    const auto later = Clock::now();
    auto refused = connection.Send(Commands::PingCommandParams{},
                                   done.Options<Commands::PingCommandParams>());
    EXPECT_EQ(refused.Wait(), Outcome::NotSent);
    EXPECT_LT(Clock::now() - later, 2s);
    ASSERT_TRUE(done.WaitFor(9));
    EXPECT_EQ(done.twice, 0);
}

TEST(ConnectionTest, SilenceEndsAtTheTimeLimitAndNoLateOrRepeatedReplyReachesAnEndedOperation) {
    RouterPeer server;
    Connection connection(To(server.Address(), 400ms));
    ASSERT_TRUE(connection.WaitConnected(kPatience));
    Completions done;
    using Ping = Commands::PingCommandParams;

    // Timed out, cancelled, answered: each then gets a late reply, the answered one twice.
    const auto started = Clock::now();
    auto silent = connection.Send(Ping{}, done.Options<Ping>());
    const Taken silentTaken = Take(server);
    auto cancelled = connection.Send(Ping{}, done.Options<Ping>());
    const Taken cancelledTaken = Take(server);
    auto answered = connection.Send(Ping{}, [&] {
        auto options = done.Options<Ping>();
        options.timeLimit = 30s;
        return options;
    }());
    const Taken answeredTaken = Take(server);

    cancelled.Cancel();
    EXPECT_EQ(cancelled.GetOutcome(), Outcome::Cancelled);
    EXPECT_EQ(silent.Wait(), Outcome::TimedOut);
    const auto waited = Clock::now() - started;
    EXPECT_GE(waited, 400ms);
    EXPECT_LT(waited, 5s);

    const auto before = connection.Commands().GetDroppedReplies().unanswerable;
    server.Reply(silentTaken.identity, silentTaken.ticket, "SuccessReply",
                 Naming(silent.CommandGuid().GetValue()));
    server.Reply(cancelledTaken.identity, cancelledTaken.ticket, "SuccessReply",
                 Naming(cancelled.CommandGuid().GetValue()));
    for (int i = 0; i < 2; ++i) {
        server.Reply(answeredTaken.identity, answeredTaken.ticket, "SuccessReply",
                     Naming(answered.CommandGuid().GetValue()));
    }
    EXPECT_EQ(answered.Wait(), Outcome::Replied);
    ASSERT_TRUE(Eventually(
        [&] { return connection.Commands().GetDroppedReplies().unanswerable >= before + 3; }));
    EXPECT_EQ(silent.GetOutcome(), Outcome::TimedOut);
    EXPECT_EQ(cancelled.GetOutcome(), Outcome::Cancelled);
    ASSERT_TRUE(done.WaitFor(3));
    EXPECT_EQ(done.twice, 0);
}

TEST(ConnectionTest, AReplyThatCannotBeDecodedOrIsOfAnotherClassIsABadReply) {
    struct Case {
        const char* header;
        bool naming;  // the payload names the command; otherwise it is garbage
    };
    const Case cases[] = {
        {"SuccessReply", false},          // undecodable
        {"GetClipsCommandReply", true},   // a reply a ping never receives
        {"NoSuchReply", true},            // a reply class nobody knows
        {"[part]SuccessReply", true},     // parts of a reply that never comes in parts
    };
    RouterPeer server;
    Connection connection(To(server.Address()));
    ASSERT_TRUE(connection.WaitConnected(kPatience));
    for (const Case& row : cases) {
        auto ping = connection.Send(Commands::PingCommandParams{});
        const Taken taken = Take(server);
        server.Reply(taken.identity, taken.ticket, row.header,
                     row.naming ? Naming(ping.CommandGuid().GetValue()) : "\xff\xff\xff");
        EXPECT_EQ(ping.Wait(), Outcome::BadReply) << row.header;
        EXPECT_FALSE(ping.Reason().empty()) << row.header;
        EXPECT_EQ(ping.GetReply(), nullptr);
    }
}

TEST(ConnectionTest, AListingInPartsIsJoinedIntoOneReplyOrHandedOverPartByPart) {
    SimulatorOptions options;
    options.clips = 1234;
    options.partSize = 100;
    SimulatorSession session(options);
    Connection connection(To(session.simulator->CommandEndpoint()));
    using List = Commands::GetClipsCommandParams;

    auto joined = connection.Send(List{});
    ASSERT_EQ(joined.Wait(), Outcome::Replied) << joined.Reason();

    std::vector<std::string> streamed;  // the callback thread's until the operation ended
    int parts = 0;
    CallOptions<List> streaming;
    streaming.onPart = [&](const Commands::GetClipsCommandReply& part) {
        ++parts;
        for (const auto& clip : part.clips) {
            streamed.push_back(clip.umId);
        }
    };
    std::atomic<bool> finished{false};
    streaming.onDone = [&](const Operation<List>&) { finished = true; };
    auto inParts = connection.Send(List{}, streaming);
    ASSERT_EQ(inParts.Wait(), Outcome::Replied);
    ASSERT_TRUE(Eventually([&] { return finished.load(); }));
    for (const auto& clip : inParts.Get<Commands::GetClipsCommandReply>()->clips) {
        streamed.push_back(clip.umId);
    }

    const auto& whole = joined.Get<Commands::GetClipsCommandReply>()->clips;
    ASSERT_EQ(whole.size(), 1234u);
    EXPECT_EQ(parts, 12);
    std::vector<std::string> wholeIds;
    for (const auto& clip : whole) {
        wholeIds.push_back(clip.umId);
    }
    EXPECT_EQ(wholeIds, streamed);
}

// Parts a slow `onPart` has not taken yet wait undecoded within the command link's reply budget:
// beyond it the listing ends as a bad reply instead of growing the client.
TEST(ConnectionTest, PartsASlowCallbackHasNotTakenStayWithinTheReplyBudget) {
    RouterPeer server;
    auto options = To(server.Address());
    options.limits.waitingReplyBytes = 16 * 1024;  // about thirty small parts
    Connection connection(options);
    ASSERT_TRUE(connection.WaitConnected(kPatience));
    std::promise<void> release;
    const std::shared_future<void> released = release.get_future().share();
    std::atomic<int> handedOver{0};
    using List = Commands::GetClipsCommandParams;
    CallOptions<List> slow;
    slow.onPart = [&](const Commands::GetClipsCommandReply&) {
        released.wait();
        ++handedOver;
    };
    auto listing = connection.Send(List{}, slow);
    const Taken taken = Take(server);
    constexpr int kParts = 200;
    for (int part = 0; part < kParts; ++part) {
        server.Reply(taken.identity, taken.ticket, "[part]GetClipsCommandReply",
                     Naming(listing.CommandGuid().GetValue()));
    }
    EXPECT_TRUE(
        Eventually([&] { return connection.Commands().GetDroppedReplies().overBudget > 0; }));
    release.set_value();
    EXPECT_EQ(listing.Wait(), Outcome::BadReply);
    EXPECT_LT(handedOver.load(), kParts / 2);
}

TEST(ConnectionTest, ARetriedReadWaitsForTheLinkAndAWriteIsNeverRetried) {
    SimulatorOptions options;
    options.faults.silent = true;
    SimulatorSession session(options);
    Connection connection(To(session.simulator->CommandEndpoint()));
    ASSERT_TRUE(connection.WaitConnected(kPatience));

    CallOptions<Commands::GetServersCommandParams> retried;
    retried.retries = 2;
    auto servers = connection.Send(Commands::GetServersCommandParams{}, retried);
    ASSERT_TRUE(Eventually([&] { return session.simulator->GetStatistics().commandsReceived >= 1; }));
    session.simulator->SetFaults({});
    session.simulator->Restart();  // the link drops with the command unanswered
    EXPECT_EQ(servers.Wait(), Outcome::Replied) << servers.Reason();
    ASSERT_NE(servers.Get<Commands::GetServersCommandReply>(), nullptr);

    CallOptions<Commands::PlayCommandParams> writeRetried;
    writeRetried.retries = 1;
    EXPECT_THROW(connection.Send(Commands::PlayCommandParams{}, writeRetried),
                 std::invalid_argument);
}

TEST(ConnectionTest, TheDialLaneKeepsOneInFlightAndTheLastValueArrivesLast) {
    SimulatorOptions options;
    options.faults.replyDelay = 50ms;
    SimulatorSession session(options);
    Connection connection(To(session.simulator->CommandEndpoint()));
    const ChannelId player = ChannelId::PlayerOf(1, 0);
    auto clips = connection.Send(Commands::GetClipsCommandParams{});
    ASSERT_EQ(clips.Wait(), Outcome::Replied);
    Commands::LoadClipsCommandParams load;
    load.playersParameters[player].clip =
        Plexis::Data::Guid(clips.Get<Commands::GetClipsCommandReply>()->clips.at(0).umId);
    ASSERT_EQ(connection.Send(load).Wait(), Outcome::Replied);
    const auto receivedBefore = session.simulator->GetStatistics().commandsReceived;

    // 1,000 values a second against a server that takes 50 ms to answer each.
    std::vector<Operation<Commands::DialCommandParams>> dials;
    const auto started = Clock::now();
    int velocity = 0;
    // Slow enough (under a tenth of normal speed) that the player never runs off its clip.
    for (auto next = started; next - started < kLaneDuration; next += 1ms) {
        std::this_thread::sleep_until(next);
        Commands::DialCommandParams dial;
        dial.players = {player};
        dial.velocity = velocity = static_cast<int>(dials.size() % 9) + 1;
        dials.push_back(connection.SendLatest(dial));
    }
    const auto lastSet = Clock::now();
    ASSERT_EQ(dials.back().Wait(), Outcome::Replied) << dials.back().Reason();
    const auto lag = Clock::now() - lastSet;

    int replied = 0;
    for (const auto& dial : dials) {
        const Outcome outcome = dial.Wait();
        EXPECT_TRUE(outcome == Outcome::Replied || outcome == Outcome::Cancelled);
        replied += outcome == Outcome::Replied ? 1 : 0;
    }
    // Nothing queued: the server saw about one command per reply time, not one per value.
    const auto received = session.simulator->GetStatistics().commandsReceived - receivedBefore;
    EXPECT_EQ(received, static_cast<std::uint64_t>(replied));
    EXPECT_LT(received, static_cast<std::uint64_t>(kLaneDuration / 50ms + 5));
    EXPECT_LT(lag, 2s);  // at most two reply times on a quiet machine

    auto state = connection.Send(Commands::GetChannelsCommandParams{});
    ASSERT_EQ(state.Wait(), Outcome::Replied);
    EXPECT_EQ(state.Get<Commands::GetChannelsCommandReply>()->playerStates.at(player)
                  .infoOnAir.speedNumerator,
              velocity);
}

TEST(ConnectionTest, WatchersSeeTheLinkComeAndGoAndAWaitForItHasALimit) {
    auto server = std::make_unique<SimulatorProcess>();
    StateLog states;  // outlives the connection, whose last state it is told
    Connection connection(To(server->CommandEndpoint()));
    connection.Watch([&](ConnectionState state) { states.Record(state); });
    EXPECT_TRUE(connection.WaitConnected(kPatience));
    EXPECT_TRUE(states.WaitFor(ConnectionState::Connected));
    server.reset();
    EXPECT_TRUE(states.WaitFor(ConnectionState::Reconnecting));
    EXPECT_FALSE(connection.WaitConnected(100ms));
}

}  // namespace
}  // namespace Korvo::Testing

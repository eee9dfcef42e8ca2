// Replies that come twice, late, for tickets nobody holds, or undecodable: each request ends
// exactly once, with its own reply or a time-out, and the others never notice.

#include "faults/FaultSupport.h"

namespace Korvo::Testing {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Plexis::Tessel::Simulator::Faults;

SimulatorOptions Small(const Faults& faults = {}) {
    SimulatorOptions options;
    options.clips = 5;
    options.faults = faults;
    return options;
}

std::unique_ptr<CommandClient> ConnectedDataClient(const Simulator& server) {
    auto client = DataClientTo(server.CommandEndpoint());
    EXPECT_TRUE(AwaitConnected(*client));
    return client;
}

TEST(ReplyFaultsTest, DuplicatedMalformedAndWithheldRepliesEndEachRequestOnceWithItsOwnReply) {
    Faults faults;
    faults.duplicateFraction = 0.3;
    faults.malformedFraction = 0.2;
    faults.dropFraction = 0.1;
    faults.replyJitter = 20ms;
    Simulator server(Small(faults));
    auto client = ConnectedDataClient(server);

    constexpr int kRequests = 300;
    std::vector<Commands::PingCommandParams> params;
    std::vector<std::unique_ptr<Pending>> handles;
    for (int i = 0; i < kRequests; ++i) {
        params.push_back(Ping());
        handles.push_back(client->Request("PingCommand", params.back()));
        ASSERT_NE(handles.back(), nullptr);
    }
    // Every reply that is sent arrives within a few milliseconds; the withheld ones all share one
    // generous deadline.
    const auto deadline = Clock::now() + 5s;
    int answered = 0;
    int undecodable = 0;
    int timedOut = 0;
    std::vector<int> silent;
    for (int i = 0; i < kRequests; ++i) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::max(deadline - Clock::now(), Clock::duration::zero()));
        auto item = handles[i]->Next(left);
        if (item.kind == Kind::TimedOut) {
            ++timedOut;
            silent.push_back(i);
            continue;
        }
        ASSERT_EQ(item.kind, Kind::Final);
        EXPECT_FALSE(handles[i]->IsPending());
        EXPECT_THROW(handles[i]->Next(0ms), std::logic_error);  // a duplicate never shows
        try {
            const auto reply = handles[i]->BuildReply(item);
            EXPECT_EQ(reply->commandGuid, params[i].commandGuid) << "request " << i;
            ++answered;
        } catch (const std::invalid_argument&) {
            ++undecodable;
        }
    }
    const auto statistics = server.GetStatistics();
    EXPECT_EQ(answered + undecodable + timedOut, kRequests);
    EXPECT_EQ(static_cast<std::uint64_t>(timedOut), statistics.repliesDropped);
    EXPECT_GT(undecodable, 0);
    EXPECT_GT(statistics.repliesSent, static_cast<std::uint64_t>(answered + undecodable));
    // No duplicate of another ticket lands on a request whose reply was withheld.
    for (int i : silent) {
        EXPECT_EQ(handles[i]->Next(0ms).kind, Kind::TimedOut);
    }

    server.SetFaults({});
    EXPECT_TRUE(PingAnswered(*client));
}

TEST(ReplyFaultsTest, ALateReplyStillEndsATimedOutRequestAndIsDroppedOnceItsHandleIsGone) {
    Faults faults;
    faults.replyDelay = 300ms;
    Simulator server(Small(faults));
    auto client = ConnectedDataClient(server);

    const auto keptParams = Ping();
    auto kept = client->Request("PingCommand", keptParams);
    auto abandoned = client->Request("PingCommand", Ping());
    ASSERT_NE(kept, nullptr);
    ASSERT_NE(abandoned, nullptr);
    EXPECT_EQ(kept->Next(10ms).kind, Kind::TimedOut);
    EXPECT_EQ(abandoned->Next(10ms).kind, Kind::TimedOut);
    abandoned.reset();
    // Sent after the abandoned one, so answered after it: once this reply is in, the abandoned
    // reply has been handled.
    const auto afterParams = Ping();
    auto after = client->Request("PingCommand", afterParams);
    ASSERT_NE(after, nullptr);

    auto keptItem = kept->Next(kPatience);
    ASSERT_EQ(keptItem.kind, Kind::Final);
    EXPECT_EQ(kept->BuildReply(keptItem)->commandGuid, keptParams.commandGuid);
    auto afterItem = after->Next(kPatience);
    ASSERT_EQ(afterItem.kind, Kind::Final);
    EXPECT_EQ(after->BuildReply(afterItem)->commandGuid, afterParams.commandGuid);
    // The abandoned request's reply was sent too (the server counts a reply just after sending it).
    EXPECT_TRUE(Eventually([&] { return server.GetStatistics().repliesSent == 3u; }));
}

}  // namespace
}  // namespace Korvo::Testing

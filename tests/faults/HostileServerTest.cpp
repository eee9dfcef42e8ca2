// A command server that floods, lies, stalls, dies and comes back: the client's memory stays under
// the cap, nothing aborts, every request ends promptly with an outcome that says what happened,
// and Pause and Stop return at once whatever the server sends.

#include <iostream>
#include <optional>
#include <thread>

#include "faults/FaultSupport.h"

namespace Korvo::Testing {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// AddressSanitizer keeps freed memory in quarantine (256 MiB by default) and pads every
// allocation; ThreadSanitizer's shadow takes several times what the program holds. There resident
// memory overstates what the library holds by up to 512 MiB with a full 64 MiB reply budget.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr long long kCap = kResidentCap + (512LL << 20);
#else
constexpr long long kCap = kResidentCap;
#endif

// The compact bytes of a reply record that names `guid` as its command and holds nothing else.
std::string Naming(const std::string& guid) {
    return std::string("\x1c\x18") + static_cast<char>(guid.size()) + guid + '\0' + '\0';
}

long long Milliseconds(Clock::duration duration) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(duration).count();
}

// A ping sent by `client` and taken by `server`: the handle, the identity the server answers to,
// the ticket and the command identifier.
struct Taken {
    std::unique_ptr<Pending> handle;
    std::string identity;
    int ticket = 0;
    std::string guid;
};

Taken SendPing(CommandClient& client, RouterPeer& server) {
    Taken taken;
    const auto params = Ping();
    taken.guid = params.commandGuid.GetValue();
    taken.handle = client.Request("PingCommand", params);
    EXPECT_NE(taken.handle, nullptr);
    const auto command = server.Receive();
    EXPECT_TRUE(command);
    if (command) {
        taken.identity = (*command)[0];
        taken.ticket = TicketOf((*command)[1]);
    }
    return taken;
}

// Floods `frames` from `server` on a thread of its own for the attack's duration.
class Flood {
public:
    Flood(RouterPeer& server, Frames frames,
          std::chrono::milliseconds limit = AttackDuration())
        : thread([this, &server, frames = std::move(frames), limit] {
              sent = server.Flood(frames, limit, stop);
          }) {}
    ~Flood() { Join(); }

    long Join() {
        stop = true;
        if (thread.joinable()) {
            thread.join();
        }
        return sent;
    }

private:
    std::atomic<bool> stop{false};
    long sent = 0;
    std::thread thread;
};

TEST(HostileServerTest, APartFloodToAnUnreadHandleEndsItsRequestWithinTheByteBudget) {
    RouterPeer server;
    auto client = DataClientTo(server.Address());
    ASSERT_TRUE(AwaitConnected(*client));
    Taken ping = SendPing(*client, server);
    const long long before = ResidentBytes();

    // Until the attack's time is up and the budget has been reached, whichever comes later, and a
    // part has come after the request ended (on a slow build the budget may be reached just as
    // the attack's time runs out).
    long long peak = before;
    const Clock::time_point started = Clock::now();
    std::optional<Clock::duration> toOverflow;
    {
        Flood flood(server, {ping.identity, TicketBytes(ping.ticket), "[part]SuccessReply",
                             Naming(ping.guid) + std::string(128, '\0')}, kPatience);
        while ((Clock::now() - started < AttackDuration() || !toOverflow ||
                client->GetDroppedReplies().unanswerable == 0) &&
               Clock::now() - started < kPatience) {
            peak = std::max(peak, ResidentBytes());
            if (!toOverflow && client->GetDroppedReplies().overBudget > 0) {
                toOverflow = Clock::now() - started;
            }
            std::this_thread::sleep_for(20ms);
        }
        std::cout << "[ measured ] part flood: " << flood.Join() << " parts sent, budget reached after "
                  << (toOverflow ? Milliseconds(*toOverflow) : -1) << " ms, resident "
                  << (before >> 20) << " MiB before, peak " << (peak >> 20) << " MiB\n";
    }
    EXPECT_LT(peak, kCap);
    // Nothing that waited is kept: the first item is the ending.
    EXPECT_EQ(ping.handle->Next(kPatience).kind, Kind::Overflowed);
    const auto dropped = client->GetDroppedReplies();
    EXPECT_GT(dropped.overBudget, 0u);
    EXPECT_GT(dropped.unanswerable, 0u);  // the parts that came after the request ended

    // The client still works. The server's queue towards it may still be full of the flood, where
    // a ROUTER drops what does not fit: answer until an answer gets through.
    Taken next = SendPing(*client, server);
    const auto deadline = Clock::now() + kPatience;
    Kind kind = Kind::TimedOut;
    while (kind == Kind::TimedOut && Clock::now() < deadline) {
        server.Reply(next.identity, next.ticket, "SuccessReply", Naming(next.guid));
        kind = next.handle->Next(100ms).kind;
    }
    EXPECT_EQ(kind, Kind::Final);
}

TEST(HostileServerTest, PauseAndStopReturnPromptlyUnderAnyReplyFloodWithASlowLogSink) {
    struct Case {
        const char* name;
        std::function<Frames(const Taken&)> message;
    };
    const std::vector<Case> cases{
        {"malformed", [](const Taken& ping) { return Frames{ping.identity, "abc", "x", "y"}; }},
        {"misaddressed",
         [](const Taken& ping) {
             return Frames{ping.identity, TicketBytes(ping.ticket), "SuccessReply",
                           Naming("another command")};
         }},
        {"unknown ticket",
         [](const Taken& ping) {
             return Frames{ping.identity, TicketBytes(ping.ticket + 1000), "SuccessReply",
                           Naming(ping.guid)};
         }},
    };
    auto messagingLog = RecordedLogger("Messaging", ILogger::Trace);
    auto clientLog = RecordedLogger("CommandClient", ILogger::Trace);
    for (const auto& attack : cases) {
        RouterPeer server;
        auto client = DataClientTo(server.Address());
        ASSERT_TRUE(AwaitConnected(*client));
        Taken ping = SendPing(*client, server);
        messagingLog->SetDelay(20ms);
        clientLog->SetDelay(20ms);

        Flood flood(server, attack.message(ping));
        // Let the flood fill every queue on the way before pausing.
        std::this_thread::sleep_for(std::min<std::chrono::milliseconds>(AttackDuration() / 2, 1s));
        auto started = Clock::now();
        client->Pause(true);
        const auto paused = Clock::now() - started;
        EXPECT_EQ(ping.handle->Next(0ms).kind, Kind::Cancelled) << attack.name;
        client->Pause(false);
        std::this_thread::sleep_for(std::min<std::chrono::milliseconds>(AttackDuration() / 2, 1s));
        started = Clock::now();
        client->Stop();
        const auto stopped = Clock::now() - started;
        flood.Join();
        messagingLog->SetDelay(0ms);
        clientLog->SetDelay(0ms);

        std::cout << "[ measured ] " << attack.name << " flood: Pause(true) "
                  << Milliseconds(paused) << " ms, Stop " << Milliseconds(stopped) << " ms\n";
        EXPECT_LT(paused, 2s) << attack.name;
        EXPECT_LT(stopped, 2s) << attack.name;
        EXPECT_LT(ResidentBytes(), kCap);
    }
    // However long the flood, the repeated lines came a few a second.
    const auto seconds = std::chrono::duration<double>(AttackDuration()).count();
    EXPECT_LT(messagingLog->Records().size(), 12 * (seconds + 1));
    EXPECT_LT(clientLog->Records().size(), 12 * (seconds + 1) + 20);
}

TEST(HostileServerTest, ARestartedServerNumberingFromZeroNeverAnswersAnotherCommand) {
    auto server = std::make_unique<RouterPeer>();
    const std::string address = server->Address();
    StateLog states;
    auto client = DataClientTo(address, QuickOptions(), &states);
    ASSERT_TRUE(states.WaitFor(ConnectionState::Connected));
    std::vector<Taken> lost;
    for (int i = 0; i < 3; ++i) {
        lost.push_back(SendPing(*client, *server));
    }

    // The server dies holding three commands: each ends at once, long before any time limit.
    auto started = Clock::now();
    server.reset();
    for (auto& ping : lost) {
        EXPECT_EQ(ping.handle->Next(kPatience).kind, Kind::LinkLost);
    }
    const auto toLinkLost = Clock::now() - started;
    started = Clock::now();
    auto whileDown = client->Request("PingCommand", Ping());
    ASSERT_NE(whileDown, nullptr);
    EXPECT_EQ(whileDown->Next(0ms).kind, Kind::NotSent);
    const auto toNotSent = Clock::now() - started;
    std::cout << "[ measured ] link lost reported after " << Milliseconds(toLinkLost)
              << " ms, not sent after " << Milliseconds(toNotSent) << " ms\n";
    EXPECT_LT(toLinkLost, 5s);
    EXPECT_LT(toNotSent, 2s);

    // Back on the same port, numbering from 0 again and answering every ticket it can think of
    // with commands of its own before the right answers.
    server = std::make_unique<RouterPeer>(address);
    ASSERT_TRUE(states.WaitFor(ConnectionState::Connected, 2));
    std::vector<Taken> fresh;
    for (int i = 0; i < 3; ++i) {
        fresh.push_back(SendPing(*client, *server));
    }
    const std::string identity = fresh.front().identity;
    for (int ticket = 0; ticket <= fresh.back().ticket; ++ticket) {
        server->Reply(identity, ticket, "SuccessReply", Naming("restarted-" + std::to_string(ticket)));
    }
    for (auto& ping : fresh) {
        server->Reply(identity, ping.ticket, "SuccessReply", Naming(ping.guid));
    }
    for (auto& ping : fresh) {
        auto item = ping.handle->Next(kPatience);
        ASSERT_EQ(item.kind, Kind::Final);
        EXPECT_EQ(ping.handle->BuildReply(item)->commandGuid.GetValue(), ping.guid);
    }
    const auto dropped = client->GetDroppedReplies();
    EXPECT_EQ(dropped.misaddressed, fresh.size());
    EXPECT_GE(dropped.unanswerable, lost.size());
}

TEST(HostileServerTest, AStalledServerLeavesRequestsToTheirTimeLimitAndPauseEndsThem) {
    RouterPeer server;
    auto client = DataClientTo(server.Address());
    ASSERT_TRUE(AwaitConnected(*client));
    Taken ping = SendPing(*client, server);  // taken, never answered, the link kept up
    EXPECT_EQ(ping.handle->Next(AttackDuration()).kind, Kind::TimedOut);
    EXPECT_TRUE(ping.handle->IsPending());
    const auto started = Clock::now();
    client->Pause(true);
    EXPECT_LT(Clock::now() - started, 2s);
    EXPECT_EQ(ping.handle->Next(0ms).kind, Kind::Cancelled);
}

}  // namespace
}  // namespace Korvo::Testing

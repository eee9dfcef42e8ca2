// Many threads sharing one command client against a server that delays every reply at random and
// never answers some: every request ends, answered or timed out; only the unanswered ones time out
// (no reply is lost) and every waiter is woken when its reply comes (no wake-up is lost).
//
// The size is a parameter: KORVO_LOAD_THREADS and KORVO_LOAD_REQUESTS (per thread) in the
// environment. By default 32 x 5,000, or 8 x 500 under ThreadSanitizer, which is far slower.

#include <atomic>
#include <cstdlib>
#include <thread>

#include "faults/FaultSupport.h"

namespace Korvo::Testing {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

#if defined(__SANITIZE_THREAD__)
constexpr int kDefaultThreads = 8;
constexpr int kDefaultRequests = 500;
#else
constexpr int kDefaultThreads = 32;
constexpr int kDefaultRequests = 5000;
#endif

int SizeFromEnvironment(const char* name, int fallback) {
    const char* text = std::getenv(name);
    const int value = text != nullptr ? std::atoi(text) : 0;
    return value > 0 ? value : fallback;
}

TEST(LoadTest, EveryRequestOfManyThreadsIsAnsweredOrTimesOutAndOnlyWithheldOnesTimeOut) {
    const int threads = SizeFromEnvironment("KORVO_LOAD_THREADS", kDefaultThreads);
    const int perThread = SizeFromEnvironment("KORVO_LOAD_REQUESTS", kDefaultRequests);

    SimulatorOptions options;
    options.clips = 5;
    options.faults.dropFraction = 0.01;
    // Replies come 0.5 to 1.5 s late, out of order: many arrive while their waiter is blocked,
    // so the wake-ups are exercised, not only the queues.
    options.faults.replyDelay = 500ms;
    options.faults.replyJitter = 1000ms;
    Simulator server(options);
    // Senders wait for room in the send queue rather than drop: every request reaches the server,
    // so every time-out is a reply it withheld.
    TransportOptions transport = QuickOptions();
    transport.sendWait = kPatience;
    StateLog states;
    auto client = DataClientTo(server.CommandEndpoint(), transport, &states);
    ASSERT_TRUE(states.WaitFor(ConnectionState::Connected));

    std::atomic<long> sent{0};
    std::atomic<long> answered{0};
    std::atomic<long> timedOut{0};
    std::atomic<long> wrong{0};      // not sent, cancelled, another request's reply, undecodable
    std::atomic<long> blocked{0};    // answered while their waiter was blocked
    std::atomic<long> wokenLate{0};  // answered, but the waiter only noticed when time ran out
    const auto started = Clock::now();
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([&] {
            std::vector<Commands::PingCommandParams> params;
            std::vector<std::unique_ptr<Pending>> handles;
            params.reserve(perThread);
            handles.reserve(perThread);
            for (int i = 0; i < perThread; ++i) {
                params.push_back(Ping());
                handles.push_back(client->Request("PingCommand", params.back()));
                (handles.back() ? sent : wrong)++;
            }
            // A sent reply arrives within seconds of the last send even on a loaded machine; the
            // withheld ones share one generous deadline, so they cost it once.
            const auto deadline = Clock::now() + 10s;
            for (int i = 0; i < perThread; ++i) {
                if (!handles[i]) {
                    continue;
                }
                const auto waitStart = Clock::now();
                const auto left = std::chrono::ceil<std::chrono::milliseconds>(
                    std::max(deadline - waitStart, Clock::duration::zero()));
                auto item = handles[i]->Next(left);
                const auto waitEnd = Clock::now();
                if (item.kind == Kind::TimedOut) {
                    timedOut++;
                    continue;
                }
                blocked += waitEnd - waitStart > 1ms ? 1 : 0;
                // A reply that was there but found only when the time ran out: a lost wake-up.
                wokenLate += left > 0ms && waitEnd >= deadline ? 1 : 0;
                bool own = false;
                try {
                    own = item.kind == Kind::Final &&
                          handles[i]->BuildReply(item)->commandGuid == params[i].commandGuid;
                } catch (const std::exception&) {
                }
                (own ? answered : wrong)++;
            }
        });
    }
    for (auto& worker : workers) {
        worker.join();
    }
    const auto elapsed = Clock::now() - started;
    const auto statistics = server.GetStatistics();
    const long total = static_cast<long>(threads) * perThread;

    EXPECT_EQ(sent.load(), total);
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(answered.load() + timedOut.load(), total);
    EXPECT_EQ(statistics.commandsReceived, static_cast<std::uint64_t>(total));
    EXPECT_EQ(static_cast<std::uint64_t>(timedOut.load()), statistics.repliesDropped);
    EXPECT_EQ(wokenLate.load(), 0);
    std::cout << threads << " threads x " << perThread << " requests: " << answered.load()
              << " answered (" << blocked.load() << " to a blocked waiter), "
              << timedOut.load() << " timed out, in "
              << std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count()
              << " ms\n";
}

}  // namespace
}  // namespace Korvo::Testing

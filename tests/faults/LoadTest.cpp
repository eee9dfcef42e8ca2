// Many threads sharing one command client against a server that delays every reply at random and
// never answers some: every request ends, answered or timed out; only the unanswered ones time out
// (no reply is lost) and every waiter is woken when its reply comes (no wake-up is lost).
//
// The size is a parameter: KORVO_LOAD_THREADS and KORVO_LOAD_REQUESTS (per thread) in the
// environment. By default 32 x 5,000, or 8 x 500 under ThreadSanitizer, which is far slower.

#include <atomic>
#include <cstdlib>
#include <future>
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
    // Every reply of the run may be held back at once: room for all of them, so none is shed.
    options.peerQueueBytes = std::size_t{512} << 20;
    options.delayedReplyBytes = std::size_t{512} << 20;
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
    std::atomic<long> wokenLate{0};  // answered, but the waiter only noticed when its wait ran out
    // The withheld replies share one deadline, set once the server has answered or withheld every
    // request: a slow machine then costs time, never a reply counted as withheld.
    std::promise<Clock::time_point> deadlineSet;
    std::shared_future<Clock::time_point> sharedDeadline = deadlineSet.get_future().share();
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
            // Until the deadline is known, waits are sliced; a slice that ends without an item
            // leaves the request pending, so nothing is lost by waiting again.
            auto deadline = Clock::time_point::max();
            for (int i = 0; i < perThread; ++i) {
                if (!handles[i]) {
                    continue;
                }
                const auto waitStart = Clock::now();
                Pending::Item item;
                for (;;) {
                    if (deadline == Clock::time_point::max() &&
                        sharedDeadline.wait_for(0s) == std::future_status::ready) {
                        deadline = sharedDeadline.get();
                    }
                    const bool final = deadline != Clock::time_point::max();
                    const auto sliceStart = Clock::now();
                    const auto left = final ? std::chrono::ceil<std::chrono::milliseconds>(std::max(
                                                  deadline - sliceStart, Clock::duration::zero()))
                                            : std::chrono::milliseconds(1000);
                    item = handles[i]->Next(left);
                    const auto sliceEnd = Clock::now();
                    // A reply found only when the wait ran out: a lost wake-up, or (rarely, on
                    // a loaded machine) one that came in the wait's last instant.
                    if (item.kind != Kind::TimedOut) {
                        wokenLate += left > 0ms && sliceEnd >= sliceStart + left ? 1 : 0;
                    }
                    if (item.kind != Kind::TimedOut || final) {
                        break;
                    }
                }
                if (item.kind == Kind::TimedOut) {
                    timedOut++;
                    continue;
                }
                blocked += Clock::now() - waitStart > 1ms ? 1 : 0;
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
    const long total = static_cast<long>(threads) * perThread;
    const bool accounted = Eventually(
        [&] {
            const auto s = server.GetStatistics();
            return s.repliesSent + s.repliesDropped + s.repliesShed >=
                   static_cast<std::uint64_t>(total);
        },
        std::chrono::milliseconds(300000));
    // Sent replies are in flight or queued on the client's side by now; ten seconds is ample for
    // the client to read them all.
    deadlineSet.set_value(Clock::now() + 10s);
    for (auto& worker : workers) {
        worker.join();
    }
    EXPECT_TRUE(accounted) << "the server neither answered nor withheld every request";
    const auto elapsed = Clock::now() - started;
    const auto statistics = server.GetStatistics();

    EXPECT_EQ(sent.load(), total);
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(answered.load() + timedOut.load(), total);
    EXPECT_EQ(statistics.commandsReceived, static_cast<std::uint64_t>(total));
    EXPECT_EQ(statistics.repliesShed, 0u);
    EXPECT_EQ(static_cast<std::uint64_t>(timedOut.load()), statistics.repliesDropped);
    // A lost wake-up is systematic; a reply landing as a slice ends is rare.
    EXPECT_LE(wokenLate.load(), blocked.load() / 20);
    std::cout << threads << " threads x " << perThread << " requests: " << answered.load()
              << " answered (" << blocked.load() << " to a blocked waiter, " << wokenLate.load()
              << " found as a wait ended), "
              << timedOut.load() << " timed out, in "
              << std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count()
              << " ms\n";
}

}  // namespace
}  // namespace Korvo::Testing

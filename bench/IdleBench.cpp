// Cost at rest: the CPU an idle, connected CommandClient and NotificationClient use over five
// seconds, and how long stopping and destroying them takes; the same for bare sockets connected
// to the same peers. Every figure is a counter of one iteration.

#include <chrono>
#include <memory>
#include <thread>

#include <benchmark/benchmark.h>

#include <Korvo/Plexis/Tessel/Client/NotificationClient.h>

#include "messaging/ZmqContext.h"
#include "support/Clients.h"
#include "support/Measure.h"
#include "support/PingResponder.h"
#include "support/Publisher.h"

namespace Korvo::Bench {
namespace {

constexpr std::chrono::seconds kIdle{5};

// Sleeps through the idle period and reports the share of one core the process used meanwhile.
void MeasureIdle(benchmark::State& state) {
    const double cpuBefore = ProcessCpuSeconds();
    const Clock::time_point wallBefore = Clock::now();
    std::this_thread::sleep_for(kIdle);
    const double wall = std::chrono::duration<double>(Clock::now() - wallBefore).count();
    state.counters["cpu_percent"] = 100.0 * (ProcessCpuSeconds() - cpuBefore) / wall;
}

double MillisecondsOf(const std::function<void()>& action) {
    const Clock::time_point start = Clock::now();
    action();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void IdleCommandLibrary(benchmark::State& state) {
    zmq::context_t serverContext;
    PingResponder responder(serverContext, "tcp://127.0.0.1:*");
    for (auto _ : state) {
        auto client = ConnectedClient(responder.Address());
        if (!client || !PingThrough(*client)) {
            state.SkipWithError("no answer from the responder");
            return;
        }
        MeasureIdle(state);
        state.counters["stop_ms"] = MillisecondsOf([&] { client->Stop(); });
        state.counters["destroy_ms"] = MillisecondsOf([&] { client.reset(); });
    }
}

void IdleCommandZmq(benchmark::State& state) {
    zmq::context_t serverContext;
    PingResponder responder(serverContext, "tcp://127.0.0.1:*");
    auto context = Common::Messaging::Detail::SharedZmqContext();
    for (auto _ : state) {
        auto dealer = std::make_unique<BareDealer>(*context, responder.Address());
        if (!dealer->RoundTrip()) {
            state.SkipWithError("no answer from the responder");
            return;
        }
        MeasureIdle(state);
        state.counters["stop_ms"] = MillisecondsOf([&] { dealer.reset(); });
        state.counters["destroy_ms"] = 0;
    }
}

void IdleNotificationLibrary(benchmark::State& state) {
    Publisher publisher("ChannelStatus/replay-1", "PlayerStateChanged", "");
    for (auto _ : state) {
        auto client = std::make_unique<Plexis::Tessel::Client::NotificationClient>(
            std::vector<Common::Messaging::EndPoint>{
                Common::Messaging::EndPoint(publisher.Address())},
            std::vector<std::string>{});
        if (!publisher.WaitForSubscriber()) {
            state.SkipWithError("the client did not subscribe");
            return;
        }
        MeasureIdle(state);
        // The notification client stops in its destructor.
        state.counters["stop_ms"] = MillisecondsOf([&] { client.reset(); });
        state.counters["destroy_ms"] = 0;
    }
}

void IdleNotificationZmq(benchmark::State& state) {
    Publisher publisher("ChannelStatus/replay-1", "PlayerStateChanged", "");
    auto context = Common::Messaging::Detail::SharedZmqContext();
    for (auto _ : state) {
        auto subscriber = std::make_unique<zmq::socket_t>(*context, zmq::socket_type::sub);
        subscriber->set(zmq::sockopt::linger, 0);
        subscriber->set(zmq::sockopt::subscribe, "");
        subscriber->connect(publisher.Address());
        if (!publisher.WaitForSubscriber()) {
            state.SkipWithError("the socket did not subscribe");
            return;
        }
        MeasureIdle(state);
        state.counters["stop_ms"] = MillisecondsOf([&] { subscriber.reset(); });
        state.counters["destroy_ms"] = 0;
    }
}

BENCHMARK(IdleCommandLibrary)->Name("Idle/CommandClient/Library")->Iterations(1)->UseRealTime();
BENCHMARK(IdleCommandZmq)->Name("Idle/CommandClient/Zmq")->Iterations(1)->UseRealTime();
BENCHMARK(IdleNotificationLibrary)
    ->Name("Idle/NotificationClient/Library")
    ->Iterations(1)
    ->UseRealTime();
BENCHMARK(IdleNotificationZmq)->Name("Idle/NotificationClient/Zmq")->Iterations(1)->UseRealTime();

}  // namespace
}  // namespace Korvo::Bench

BENCHMARK_MAIN();

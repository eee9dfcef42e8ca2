// Commands through the library's CommandClient and ZeroMQ messenger against a bare DEALER socket
// exchanging the same three frames with the same responder: single round trips (median and 99th
// percentile) and pipelined throughput with 1, 8 and 32 requests in flight.

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include "messaging/ZmqContext.h"
#include "support/Clients.h"
#include "support/Measure.h"
#include "support/PingResponder.h"

namespace Korvo::Bench {
namespace {

// Requests per timed batch of the pipelined measurements.
constexpr int kBatch = 3000;

// The responder on one transport. Over TCP it runs in a context of its own, as a server in
// another process would; over inproc it must share the client's context.
class Server {
public:
    explicit Server(bool inproc)
        : shared(Common::Messaging::Detail::SharedZmqContext()),
          own(inproc ? nullptr : std::make_unique<zmq::context_t>()),
          responder(inproc ? *shared : *own, inproc
                                                 ? "inproc://korvo-bench-" + std::to_string(++count)
                                                 : "tcp://127.0.0.1:*") {}

    const std::string& Address() const { return responder.Address(); }
    zmq::context_t& ClientContext() { return *shared; }

private:
    static inline std::atomic<int> count{0};
    std::shared_ptr<zmq::context_t> shared;
    std::unique_ptr<zmq::context_t> own;
    PingResponder responder;
};

// Pings sent now and then, as an operator sends commands: before each one the link stays quiet
// for between 0 and 220 ms (the same pseudo-random sequence for both sides), outside the timing:
// long enough for the client to fall idle, which a command must not wait for.
constexpr int kSparsePings = 40;

// Times each call of `roundTrip`, back to back or, when `sparse`, after a quiet pause.
template <class RoundTrip>
void TimeRoundTrips(benchmark::State& state, bool sparse, RoundTrip&& roundTrip) {
    Latencies latencies;
    const CostMeter cost;
    unsigned seed = 12345;
    for (auto _ : state) {
        if (sparse) {
            seed = seed * 1103515245u + 12345u;
            state.PauseTiming();
            std::this_thread::sleep_for(std::chrono::milliseconds((seed >> 16) % 220));
            state.ResumeTiming();
        }
        const Clock::time_point start = Clock::now();
        if (!roundTrip()) {
            state.SkipWithError("a ping failed");
            return;
        }
        latencies.Add(Clock::now() - start);
    }
    latencies.Report(state);
    cost.Report(state, static_cast<double>(state.iterations()));
}

void RoundTripLibrary(benchmark::State& state, bool inproc, bool sparse) {
    Server server(inproc);
    auto client = ConnectedClient(server.Address());
    if (!client || !PingThrough(*client)) {
        state.SkipWithError("no answer from the responder");
        return;
    }
    TimeRoundTrips(state, sparse, [&] { return PingThrough(*client); });
}

void RoundTripZmq(benchmark::State& state, bool inproc, bool sparse) {
    Server server(inproc);
    BareDealer dealer(server.ClientContext(), server.Address());
    if (!dealer.RoundTrip()) {
        state.SkipWithError("no answer from the responder");
        return;
    }
    TimeRoundTrips(state, sparse, [&] { return dealer.RoundTrip(); });
}

// The library and the bare DEALER take turns (see `AlternateRoundTrips`).
void RoundTripPaired(benchmark::State& state, bool inproc) {
    Server server(inproc);
    auto client = ConnectedClient(server.Address());
    BareDealer dealer(server.ClientContext(), server.Address());
    if (!client || !PingThrough(*client) || !dealer.RoundTrip()) {
        state.SkipWithError("no answer from the responder");
        return;
    }
    AlternateRoundTrips(
        state, [&] { return PingThrough(*client); }, [&] { return dealer.RoundTrip(); });
}

// Runs batches of pings from `threads` application threads at once, each sending back to back
// with `ping(thread)` until the batch is used up, so that `threads` requests are in flight; times
// each batch.
void TimeThreads(benchmark::State& state, int threads, const std::function<bool(int)>& ping) {
    const CostMeter cost;
    for (auto _ : state) {
        std::atomic<int> left{kBatch};
        std::atomic<bool> go{false};
        std::atomic<bool> failed{false};
        std::vector<std::thread> workers;
        for (int i = 0; i < threads; ++i) {
            workers.emplace_back([&, i] {
                while (!go.load()) {
                    std::this_thread::yield();
                }
                while (left.fetch_sub(1) > 0) {
                    if (!ping(i)) {
                        failed.store(true);
                    }
                }
            });
        }
        const Clock::time_point start = Clock::now();
        go.store(true);
        for (std::thread& worker : workers) {
            worker.join();
        }
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        if (failed.load()) {
            state.SkipWithError("a ping failed");
            return;
        }
    }
    state.SetItemsProcessed(state.iterations() * kBatch);
    cost.Report(state, static_cast<double>(state.iterations() * kBatch));
}

// The application threads share one client.
void PipelinedLibrary(benchmark::State& state, bool inproc, int threads) {
    Server server(inproc);
    auto client = ConnectedClient(server.Address());
    if (!client || !PingThrough(*client)) {
        state.SkipWithError("no answer from the responder");
        return;
    }
    TimeThreads(state, threads, [&](int) { return PingThrough(*client); });
}

// One thread keeps `window` pings in flight on one DEALER: it sends a new one per reply.
void PipelinedZmq(benchmark::State& state, bool inproc, int window) {
    Server server(inproc);
    BareDealer dealer(server.ClientContext(), server.Address());
    if (!dealer.RoundTrip()) {
        state.SkipWithError("no answer from the responder");
        return;
    }
    const CostMeter cost;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        int sent = 0;
        for (; sent < window && sent < kBatch; ++sent) {
            dealer.Send();
        }
        for (int received = 0; received < kBatch; ++received) {
            if (!dealer.Receive()) {
                state.SkipWithError("a ping failed");
                return;
            }
            if (sent < kBatch) {
                dealer.Send();
                ++sent;
            }
        }
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    }
    state.SetItemsProcessed(state.iterations() * kBatch);
    cost.Report(state, static_cast<double>(state.iterations() * kBatch));
}

// Each application thread has a DEALER of its own (a socket serves one thread): the bare form of
// the library's threading, which pays the same wake-up of a sleeping thread per reply.
void PipelinedZmqThreads(benchmark::State& state, bool inproc, int threads) {
    Server server(inproc);
    std::vector<std::unique_ptr<BareDealer>> dealers;
    for (int i = 0; i < threads; ++i) {
        dealers.push_back(std::make_unique<BareDealer>(server.ClientContext(), server.Address()));
        if (!dealers.back()->RoundTrip()) {
            state.SkipWithError("no answer from the responder");
            return;
        }
    }
    TimeThreads(state, threads,
                [&](int thread) { return dealers[static_cast<std::size_t>(thread)]->RoundTrip(); });
}

const bool registered = [] {
    benchmark::RegisterBenchmark("RoundTripSparse/tcp/Library", RoundTripLibrary, false, true)
        ->Iterations(kSparsePings)
        ->UseRealTime();
    benchmark::RegisterBenchmark("RoundTripSparse/tcp/Zmq", RoundTripZmq, false, true)
        ->Iterations(kSparsePings)
        ->UseRealTime();
    for (const bool inproc : {false, true}) {
        const std::string transport = inproc ? "inproc" : "tcp";
        benchmark::RegisterBenchmark(("RoundTrip/" + transport + "/Library").c_str(),
                                     RoundTripLibrary, inproc, false)
            ->UseRealTime();
        benchmark::RegisterBenchmark(("RoundTrip/" + transport + "/Zmq").c_str(), RoundTripZmq,
                                     inproc, false)
            ->UseRealTime();
        benchmark::RegisterBenchmark(("RoundTripPaired/" + transport + "/Both").c_str(),
                                     RoundTripPaired, inproc)
            ->UseRealTime();
        for (const int inFlight : {1, 8, 32}) {
            const std::string name =
                "Pipelined/" + transport + "/" + std::to_string(inFlight) + "/";
            benchmark::RegisterBenchmark((name + "Library").c_str(), PipelinedLibrary, inproc,
                                         inFlight)
                ->UseManualTime();
            benchmark::RegisterBenchmark((name + "Zmq").c_str(), PipelinedZmq, inproc, inFlight)
                ->UseManualTime();
            benchmark::RegisterBenchmark((name + "ZmqThreads").c_str(), PipelinedZmqThreads, inproc,
                                         inFlight)
                ->UseManualTime();
        }
    }
    return true;
}();

}  // namespace
}  // namespace Korvo::Bench

BENCHMARK_MAIN();

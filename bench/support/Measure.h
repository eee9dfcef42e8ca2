#pragma once

// Small measuring helpers shared by the benchmark programs.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "support/AllocationCounter.h"

namespace Korvo::Bench {

using Clock = std::chrono::steady_clock;

/// Collects the duration of each iteration and reports their median and 99th percentile, in
/// microseconds, as the counters "p50_us" and "p99_us".
class Latencies {
public:
    void Add(Clock::duration elapsed) {
        samples.push_back(std::chrono::duration<double, std::micro>(elapsed).count());
    }

    /// `prefix` goes in front of the counters' names.
    void Report(benchmark::State& state, const std::string& prefix = "") {
        if (samples.empty()) {
            return;
        }
        state.counters[prefix + "p50_us"] = Percentile(0.50);
        state.counters[prefix + "p99_us"] = Percentile(0.99);
    }

private:
    double Percentile(double fraction) {
        const auto index =
            static_cast<std::size_t>(fraction * static_cast<double>(samples.size() - 1));
        std::nth_element(samples.begin(), samples.begin() + static_cast<long>(index),
                         samples.end());
        return samples[index];
    }

    std::vector<double> samples;
};

/// The library and the bare DEALER take turns, a block of round trips each, so that both see the
/// same load of the machine while each keeps its own state in the caches: on a busy machine the
/// ratio of their medians is the steadiest figure. Each callable makes one round trip and says
/// whether it was answered. Reported as "Library_p50_us", "Zmq_p50_us"...
template <class LibraryTrip, class BareTrip>
void AlternateRoundTrips(benchmark::State& state, LibraryTrip&& library, BareTrip&& bare) {
    constexpr long kTurn = 64;
    Latencies libraryTimes;
    Latencies bareTimes;
    long turn = 0;
    for (auto _ : state) {
        const bool libraryTurn = (turn++ / kTurn) % 2 == 0;
        const Clock::time_point start = Clock::now();
        if (!(libraryTurn ? library() : bare())) {
            state.SkipWithError("a ping failed");
            return;
        }
        (libraryTurn ? libraryTimes : bareTimes).Add(Clock::now() - start);
    }
    libraryTimes.Report(state, "Library_");
    bareTimes.Report(state, "Zmq_");
}

/// Reports the allocations made since construction, per iteration, as "allocs_per_record".
class AllocationMeter {
public:
    AllocationMeter() : start(Allocations()) {}

    void Report(benchmark::State& state) const {
        state.counters["allocs_per_record"] = benchmark::Counter(
            static_cast<double>(Allocations() - start), benchmark::Counter::kAvgIterations);
    }

private:
    std::uint64_t start;
};

/// CPU time consumed so far by every thread of the process, in seconds.
double ProcessCpuSeconds();

/// Context switches of every thread of the process so far, voluntary and not.
double ProcessContextSwitches();

/// What the whole process spent per item (a round trip, a request, a notification) since
/// construction: "cpu_us_per_item", "switches_per_item" and "allocs_per_item". Every thread
/// counts, the peer's as well, which both sides of a comparison have alike.
class CostMeter {
public:
    CostMeter()
        : allocations(Allocations()),
          cpu(ProcessCpuSeconds()),
          switches(ProcessContextSwitches()) {}

    void Report(benchmark::State& state, double items) const {
        if (items <= 0) {
            return;
        }
        state.counters["cpu_us_per_item"] = (ProcessCpuSeconds() - cpu) * 1e6 / items;
        state.counters["switches_per_item"] = (ProcessContextSwitches() - switches) / items;
        state.counters["allocs_per_item"] =
            static_cast<double>(Allocations() - allocations) / items;
    }

private:
    std::uint64_t allocations;
    double cpu;
    double switches;
};

/// Calls `condition` every millisecond until it holds; false when it still does not after
/// `limit`.
bool WaitUntil(const std::function<bool()>& condition,
               std::chrono::milliseconds limit = std::chrono::seconds(10));

}  // namespace Korvo::Bench

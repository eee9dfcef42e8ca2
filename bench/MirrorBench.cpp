// The mirror's costs: the heap bytes it holds per clip against the deep size of the same clips
// held as plain `Clip` values; the time a snapshot takes whatever the size of the catalogue; and
// how long the mirror takes to become live, to notice a change made without a notification, and
// to resync after a server restart. The mirror follows an in-process simulator.

#include <malloc.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

#include <Korvo/Plexis/Tessel/Client/Mirror.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandReply.h>
#include <Korvo/Plexis/Tessel/Simulator/Simulator.h>

#include <Korvo/Plexis/Tessel/Logging/Loggers.h>
#include <Korvo/Plexis/Tessel/Logging/StandardErrorLoggerFactory.h>

#include "mirror/MirrorData.h"
#include "support/Measure.h"

namespace Korvo::Bench {
namespace {

namespace Commands = Plexis::Tessel::HighLevelOperations::Commands;
namespace Sim = Plexis::Tessel::Simulator;
using namespace Plexis::Tessel::Client;
using Plexis::Data::Clips::Clip;

std::size_t HeapInUse() {
    malloc_trim(0);
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;  // small blocks and those mapped on their own
}

double Seconds(Clock::time_point since) {
    return std::chrono::duration<double>(Clock::now() - since).count();
}

// A simulator of `clips` clips whose send queues hold a whole listing of them.
Sim::SimulatorOptions Holding(int clips) {
    Sim::SimulatorOptions options;
    options.clips = clips;
    options.peerQueueBytes = options.sendQueueBytes = std::size_t{1} << 30;
    return options;
}

struct Followed {
    std::unique_ptr<Sim::Simulator> simulator;
    std::unique_ptr<Mirror> mirror;
};

bool AllLive(const SourceSnapshot& source) {
    if (source.CatalogueState() != SyncState::Live || source.Servers().empty()) {
        return false;
    }
    for (const auto& [id, server] : source.Servers()) {
        if (server.state != SyncState::Live) {
            return false;
        }
    }
    return true;
}

// A simulator holding `clips` clips and a mirror of it, live.
Followed Follow(int clips, std::chrono::milliseconds catalogueCheck = std::chrono::seconds(30)) {
    Followed followed;
    auto options = Holding(clips);
    followed.simulator = std::make_unique<Sim::Simulator>(options);
    MirrorOptions mirrorOptions;
    ConnectionOptions source;
    source.commandEndPoint = followed.simulator->CommandEndpoint();
    source.notificationEndPoints = {followed.simulator->NotificationEndpoint()};
    source.timeLimit = std::chrono::seconds(60);
    mirrorOptions.sources = {source};
    mirrorOptions.listingTimeLimit = std::chrono::seconds(60);
    mirrorOptions.catalogueCheckPeriod = catalogueCheck;
    followed.mirror = std::make_unique<Mirror>(mirrorOptions);
    WaitUntil([&] { return AllLive(followed.mirror->Snapshot().Source(0)); },
              std::chrono::seconds(120));
    return followed;
}

// Heap bytes per clip: the clips as a vector of `Clip`, then as the mirror keeps them.
void MemoryPerClip(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    std::vector<Clip> listed;
    {
        Sim::Simulator simulator(Holding(count));
        ConnectionOptions direct;
        direct.commandEndPoint = simulator.CommandEndpoint();
        direct.timeLimit = std::chrono::seconds(60);
        Connection connection(direct);
        auto operation = connection.Send(Commands::GetClipsCommandParams{});
        if (operation.Wait() != Outcome::Replied) {
            state.SkipWithError(("no clip listing: " + std::string(ToString(operation.GetOutcome())) + " " + operation.Reason()).c_str());
            return;
        }
        listed = operation.Get<Commands::GetClipsCommandReply>()->clips;
    }
    for (auto _ : state) {
        const auto before = HeapInUse();
        auto plain = std::make_unique<std::vector<Clip>>(listed);
        const auto plainBytes = HeapInUse() - before;
        plain.reset();

        const auto start = HeapInUse();
        Detail::ClipEditor editor(Detail::ClipTable::Empty());
        for (const auto& clip : listed) {
            editor.Put(std::make_shared<const Clip>(clip));
        }
        auto table = editor.Freeze();
        const auto mirroredBytes = HeapInUse() - start;
        state.counters["clip_bytes"] = static_cast<double>(plainBytes) / count;
        state.counters["mirrored_bytes"] = static_cast<double>(mirroredBytes) / count;
        state.counters["ratio"] = static_cast<double>(mirroredBytes) / plainBytes;
        benchmark::DoNotOptimize(table);
    }
}
BENCHMARK(MemoryPerClip)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);

// A snapshot of a mirror of 1,000 and of 100,000 clips, while the mirror keeps applying what the
// simulator's playing players and recorders publish.
void SnapshotTime(benchmark::State& state) {
    static Followed small;
    static Followed large;
    auto& followed = state.range(0) == 1000 ? small : large;
    if (!followed.mirror) {
        followed = Follow(static_cast<int>(state.range(0)));
    }
    if (followed.mirror->Snapshot().Source(0).ClipCount() != static_cast<std::size_t>(state.range(0))) {
        state.SkipWithError("the mirror did not list every clip");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(followed.mirror->Snapshot());
    }
}
BENCHMARK(SnapshotTime)->Arg(1000)->Arg(100000)->Unit(benchmark::kNanosecond);

// Start-up (subscribe, list, live), a channel changed without a notification, a clip changed
// without a notification, and a restart, each timed until the mirror shows it.
void Convergence(benchmark::State& state) {
    if (std::getenv("KORVO_BENCH_LOG")) {  // what the mirror does, on standard error
        auto& loggers = Plexis::Tessel::Logging::Loggers::GetInstance();
        loggers.SetLoggerFactory(std::make_unique<Plexis::Tessel::Logging::StandardErrorLoggerFactory>());
        loggers.SetLoggingLevel(Plexis::Tessel::Logging::ILogger::Info);
    }
    const int clips = static_cast<int>(state.range(0));
    for (auto _ : state) {
        const auto start = Clock::now();
        auto followed = Follow(clips, std::chrono::seconds(5));
        state.counters["startup_s"] = Seconds(start);
        auto& mirror = *followed.mirror;
        auto& simulator = *followed.simulator;

        const auto player = Plexis::Data::Channels::Guid::PlayerOf(1, 0);
        const auto modeBefore = mirror.Snapshot().Source(0).Players().at(player)->playMode;
        auto changed = Clock::now();
        simulator.ChangeChannelUnannounced("player:1:0");
        WaitUntil([&] {
            return mirror.Snapshot().Source(0).Players().at(player)->playMode != modeBefore;
        }, std::chrono::seconds(30));
        state.counters["silent_channel_s"] = Seconds(changed);

        std::string umId;
        mirror.Snapshot().Source(0).ForEachClip([&](const auto& clip) { umId = clip->umId; });
        changed = Clock::now();
        simulator.ChangeClipUnannounced(umId, "changed at the panel");
        WaitUntil([&] {
            const auto clip = mirror.Snapshot().Source(0).FindClip(umId);
            return clip && clip->name.data == "changed at the panel";
        }, std::chrono::seconds(60));
        state.counters["silent_clip_s"] = Seconds(changed);

        std::atomic<bool> wentStale{false};
        mirror.WatchStates([&](const SyncStateChanged& change) {
            if (change.serverId != 0 && change.after != SyncState::Live) {
                wentStale = true;
            }
        });
        const auto restarted = Clock::now();
        simulator.Restart();
        WaitUntil([&] {
            const auto snapshot = mirror.Snapshot();
            for (const auto& [id, server] : snapshot.Source(0).Servers()) {
                if (server.state != SyncState::Live) {
                    return false;
                }
            }
            return wentStale.load();
        }, std::chrono::seconds(60));
        state.counters["restart_channels_s"] = Seconds(restarted);
        WaitUntil([&] { return AllLive(mirror.Snapshot().Source(0)); }, std::chrono::seconds(120));
        state.counters["restart_all_s"] = Seconds(restarted);
    }
}
BENCHMARK(Convergence)->Arg(1000)->Arg(100000)->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace
}  // namespace Korvo::Bench

BENCHMARK_MAIN();

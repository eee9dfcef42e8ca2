// Notification dispatch: PlayerStateChanged notifications published over TCP loopback, received
// through the library's NotificationClient and handed decoded to a callback, against a bare SUB
// socket that receives the same messages and decodes them with the generated record.

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <mutex>

#include <benchmark/benchmark.h>

#include <Korvo/Common/Serialization/Serializer.h>
#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Tessel/Client/NotificationClient.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

#include "messaging/ZmqContext.h"
#include "support/BareThrift.h"
#include "support/Measure.h"
#include "support/Publisher.h"
#include "support/Values.h"

namespace Korvo::Bench {
namespace {

namespace Notification = Plexis::Notification;
namespace Wire = Plexis::Tessel::Serialization::Thrift::Notifier::Generated;
namespace Notifier = Plexis::Tessel::Serialization::Thrift::Notifier;

// Notifications per timed batch.
constexpr std::size_t kBatch = 20000;

std::string PlayerStatePayload() {
    const Notification::PlayerStateChangedEventArgs args = PlayerStateChangedSample();
    using namespace Common::Serialization;
    const auto bytes = Serializer<SerializerImpl<Wire::PlayerStateChangedEventArgs>,
                                  Notification::PlayerStateChangedEventArgs,
                                  Notifier::PlayerStateChangedEventArgsToThriftConverter>()
                           .Serialize(args);
    return std::string(reinterpret_cast<const char*>(bytes->Pointer()), bytes->Size());
}

// Counts the callbacks and lets the benchmark thread wait for a total.
class Tally {
public:
    void Add() {
        std::size_t now;
        {
            std::lock_guard<std::mutex> lock(mutex);
            now = ++count;
        }
        if (now >= target) {
            reached.notify_one();
        }
    }

    void WaitFor(std::size_t total) {
        std::unique_lock<std::mutex> lock(mutex);
        target = total;
        reached.wait(lock, [&] { return count >= target; });
    }

    std::size_t Count() {
        std::lock_guard<std::mutex> lock(mutex);
        return count;
    }

private:
    std::mutex mutex;
    std::condition_variable reached;
    std::size_t count = 0;
    std::atomic<std::size_t> target{~std::size_t{0}};
};

void DispatchLibrary(benchmark::State& state) {
    Publisher publisher("ChannelStatus/replay-1", "PlayerStateChanged", PlayerStatePayload());
    Plexis::Tessel::Client::NotificationClient client(
        {Common::Messaging::EndPoint(publisher.Address())}, {});
    Tally tally;
    std::int64_t checksum = 0;
    client.playerStateChangedHandlers.push_back(
        [&](const Notification::PlayerStateChangedEventArgs& args) {
            checksum += args.timestamp;
            tally.Add();
        });
    if (!publisher.WaitForSubscriber()) {
        state.SkipWithError("the client did not subscribe");
        return;
    }
    std::size_t expected = 0;
    const CostMeter cost;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        publisher.StartBatch(kBatch);
        expected += kBatch;
        tally.WaitFor(expected);
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        publisher.FinishBatch();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kBatch));
    cost.Report(state, static_cast<double>(state.iterations()) * static_cast<double>(kBatch));
    benchmark::DoNotOptimize(checksum);
}

void DispatchZmq(benchmark::State& state) {
    Publisher publisher("ChannelStatus/replay-1", "PlayerStateChanged", PlayerStatePayload());
    auto context = Common::Messaging::Detail::SharedZmqContext();
    zmq::socket_t subscriber(*context, zmq::socket_type::sub);
    subscriber.set(zmq::sockopt::linger, 0);
    subscriber.set(zmq::sockopt::rcvhwm, 100000);
    subscriber.set(zmq::sockopt::subscribe, "");
    subscriber.connect(publisher.Address());
    if (!publisher.WaitForSubscriber()) {
        state.SkipWithError("the socket did not subscribe");
        return;
    }
    std::int64_t checksum = 0;
    std::array<zmq::message_t, 3> frames;
    const CostMeter cost;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        publisher.StartBatch(kBatch);
        for (std::size_t i = 0; i < kBatch; ++i) {
            for (zmq::message_t& frame : frames) {
                (void)subscriber.recv(frame);
            }
            if (frames[1].to_string_view() == "PlayerStateChanged") {
                Wire::PlayerStateChangedEventArgs args;
                BareThrift::Decode(frames[2].data(), frames[2].size(), args);
                checksum += args.timestamp;
            }
        }
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        publisher.FinishBatch();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kBatch));
    cost.Report(state, static_cast<double>(state.iterations()) * static_cast<double>(kBatch));
    benchmark::DoNotOptimize(checksum);
}

BENCHMARK(DispatchLibrary)->Name("Notify/tcp/Library")->UseManualTime();
BENCHMARK(DispatchZmq)->Name("Notify/tcp/Zmq")->UseManualTime();

}  // namespace
}  // namespace Korvo::Bench

BENCHMARK_MAIN();

// Commands through `Connection` against a bare DEALER exchanging the same frames with the same
// responder: a typed round trip (both taking turns), pipelined throughput with completion
// callbacks from one application thread, and the lag of the dial lane behind a slow server.

#include <atomic>
#include <iterator>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include <benchmark/benchmark.h>
#include <zmq_addon.hpp>

#include <Korvo/Plexis/Tessel/Client/Connection.h>

#include "messaging/ZmqContext.h"
#include "support/Clients.h"
#include "support/Measure.h"
#include "support/PingResponder.h"

namespace Korvo::Bench {
namespace {

namespace Commands = Plexis::Tessel::HighLevelOperations::Commands;
using Plexis::Tessel::Client::CallOptions;
using Plexis::Tessel::Client::Connection;
using Plexis::Tessel::Client::ConnectionOptions;
using Plexis::Tessel::Client::Operation;
using Plexis::Tessel::Client::Outcome;

constexpr int kBatch = 3000;

// The responder over TCP, in a context of its own as a server in another process would be.
struct TcpServer {
    // The bare DEALER's context, the one the library's sockets use.
    std::shared_ptr<zmq::context_t> clientContext = Common::Messaging::Detail::SharedZmqContext();
    zmq::context_t context;
    PingResponder responder{context, "tcp://127.0.0.1:*"};
};

std::unique_ptr<Connection> ConnectedTo(const std::string& address) {
    ConnectionOptions options;
    options.name = "bench";
    options.commandEndPoint = address;
    auto connection = std::make_unique<Connection>(options);
    return connection->WaitConnected(std::chrono::seconds(10)) ? std::move(connection) : nullptr;
}

bool PingThrough(Connection& connection) {
    return connection.Send(Commands::PingCommandParams{}).Wait() == Outcome::Replied;
}

void RoundTripPaired(benchmark::State& state) {
    TcpServer server;
    auto connection = ConnectedTo(server.responder.Address());
    BareDealer dealer(*server.clientContext, server.responder.Address());
    if (!connection || !PingThrough(*connection) || !dealer.RoundTrip()) {
        state.SkipWithError("no answer from the responder");
        return;
    }
    AlternateRoundTrips(
        state, [&] { return PingThrough(*connection); }, [&] { return dealer.RoundTrip(); });
}

// One application thread keeps `window` pings in flight; each completion callback makes room.
void PipelinedLibrary(benchmark::State& state, int window) {
    TcpServer server;
    auto connection = ConnectedTo(server.responder.Address());
    if (!connection || !PingThrough(*connection)) {
        state.SkipWithError("no answer from the responder");
        return;
    }
    std::mutex mutex;
    std::condition_variable room;
    int inFlight = 0;
    int completed = 0;
    bool failed = false;
    CallOptions<Commands::PingCommandParams> options;
    options.onDone = [&](const Operation<Commands::PingCommandParams>& operation) {
        {
            std::lock_guard<std::mutex> lock(mutex);
            --inFlight;
            ++completed;
            failed = failed || operation.GetOutcome() != Outcome::Replied;
        }
        room.notify_one();
    };
    const CostMeter cost;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        completed = 0;
        for (int sent = 0; sent < kBatch; ++sent) {
            {
                std::unique_lock<std::mutex> lock(mutex);
                room.wait(lock, [&] { return inFlight < window; });
                ++inFlight;
            }
            connection->Send(Commands::PingCommandParams{}, options);
        }
        std::unique_lock<std::mutex> lock(mutex);
        room.wait(lock, [&] { return completed == kBatch; });
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        if (failed) {
            state.SkipWithError("a ping failed");
            return;
        }
    }
    state.SetItemsProcessed(state.iterations() * kBatch);
    cost.Report(state, static_cast<double>(state.iterations() * kBatch));
}

// One thread keeps `window` pings in flight on one DEALER: it sends a new one per reply.
void PipelinedZmq(benchmark::State& state, int window) {
    TcpServer server;
    BareDealer dealer(*server.clientContext, server.responder.Address());
    if (!dealer.RoundTrip()) {
        state.SkipWithError("no answer from the responder");
        return;
    }
    const CostMeter cost;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        int sent = 0;
        for (; sent < window; ++sent) {
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

// A server that takes `replyTime` to answer each command, one at a time, and notes when the
// latest command arrived.
class SlowServer {
public:
    explicit SlowServer(std::chrono::microseconds replyTime)
        : replyTime(replyTime), router(context, zmq::socket_type::router) {
        router.set(zmq::sockopt::rcvtimeo, 50);
        router.bind("tcp://127.0.0.1:*");
        address = router.get(zmq::sockopt::last_endpoint);
        thread = std::thread([this] { Run(); });
    }
    ~SlowServer() {
        stop = true;
        thread.join();
    }

    std::string address;
    std::atomic<Clock::rep> lastArrival{0};

private:
    void Run() {
        while (!stop) {
            std::vector<zmq::message_t> frames;
            if (!zmq::recv_multipart(router, std::back_inserter(frames)) || frames.size() != 4) {
                continue;
            }
            lastArrival = Clock::now().time_since_epoch().count();
            // The command's identifier: field 1 (a struct) holding field 1 (a short string).
            const std::string payload = frames[3].to_string();
            const std::string guid = payload.size() > 3 ? payload.substr(3, static_cast<unsigned char>(payload[2])) : "";
            std::this_thread::sleep_for(replyTime);
            const std::string reply =
                std::string("\x1c\x18") + static_cast<char>(guid.size()) + guid + '\0' + '\0';
            router.send(frames[0], zmq::send_flags::sndmore);
            router.send(frames[1], zmq::send_flags::sndmore);
            router.send(zmq::buffer(std::string("SuccessReply")), zmq::send_flags::sndmore);
            router.send(zmq::buffer(reply), zmq::send_flags::none);
        }
    }

    const std::chrono::microseconds replyTime;
    zmq::context_t context;
    zmq::socket_t router;
    std::atomic<bool> stop{false};
    std::thread thread;
};

// 1,000 dial values a second for half a second, then the time from the last one set to the
// server receiving it. Reported with the server's reply time, the bound the lane is held to.
void DialLaneLag(benchmark::State& state) {
    constexpr std::chrono::milliseconds kReplyTime{5};
    SlowServer server(kReplyTime);
    auto connection = ConnectedTo(server.address);
    if (!connection) {
        state.SkipWithError("no link to the server");
        return;
    }
    Latencies lag;
    for (auto _ : state) {
        Commands::DialCommandParams dial;
        dial.players = {Plexis::Data::Channels::Guid::PlayerOf(1, 0)};
        const auto started = Clock::now();
        Clock::time_point lastSet;
        std::unique_ptr<Operation<Commands::DialCommandParams>> last;
        for (auto next = started; next - started < std::chrono::milliseconds(500);
             next += std::chrono::milliseconds(1)) {
            std::this_thread::sleep_until(next);
            dial.velocity++;
            dial.commandGuid = {};
            lastSet = Clock::now();
            last = std::make_unique<Operation<Commands::DialCommandParams>>(
                connection->SendLatest(dial));
        }
        if (last->Wait() != Outcome::Replied) {
            state.SkipWithError("the last dial was not answered");
            return;
        }
        lag.Add(Clock::time_point(Clock::duration(server.lastArrival.load())) - lastSet);
    }
    lag.Report(state, "lag_");
    state.counters["reply_us"] =
        static_cast<double>(std::chrono::microseconds(kReplyTime).count());
}

const bool registered = [] {
    benchmark::RegisterBenchmark("ConnectionRoundTripPaired/tcp/Both", RoundTripPaired)
        ->UseRealTime();
    for (const int inFlight : {8, 32}) {
        const std::string name = "ConnectionPipelined/tcp/" + std::to_string(inFlight) + "/";
        benchmark::RegisterBenchmark((name + "Library").c_str(), PipelinedLibrary, inFlight)
            ->UseManualTime();
        benchmark::RegisterBenchmark((name + "Zmq").c_str(), PipelinedZmq, inFlight)
            ->UseManualTime();
    }
    benchmark::RegisterBenchmark("ConnectionDialLag/tcp/Library", DialLaneLag)
        ->Iterations(6)
        ->UseRealTime();
    return true;
}();

}  // namespace
}  // namespace Korvo::Bench

BENCHMARK_MAIN();

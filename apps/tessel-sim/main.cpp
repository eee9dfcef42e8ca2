// tessel-sim: a replay-server simulator on ZeroMQ, for developing and testing applications without
// a server. Prints the endpoints it listens on, one per line, then serves until SIGINT or SIGTERM.
// SIGHUP restarts it (sockets closed and bound again); SIGUSR1 takes server 1 off the network and
// SIGUSR2 brings it back.

#include <signal.h>

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <sstream>

#include <CLI/CLI.hpp>

#include <Korvo/Plexis/Tessel/Logging/Loggers.h>
#include <Korvo/Plexis/Tessel/Logging/StandardErrorLoggerFactory.h>
#include <Korvo/Plexis/Tessel/Simulator/Simulator.h>

namespace {

using namespace Korvo::Plexis::Tessel;

// A number between `low` and `high` inclusive; NaN, infinities and text are refused.
CLI::Validator Within(double low, double high) {
    std::ostringstream description;
    description.precision(15);
    description << "in [" << low << " - " << high << "]";
    return CLI::Validator(
        [low, high](std::string& input) -> std::string {
            std::istringstream stream(input);
            double value = 0;
            stream >> value;
            if (stream.fail() || !stream.eof() || !(value >= low && value <= high)) {
                std::ostringstream message;
                message.precision(15);
                message << "Value " << input << " not in range " << low << " to " << high;
                return message.str();
            }
            return {};
        },
        description.str());
}

constexpr double kMaxCount = Simulator::kMaxCount;
constexpr double kMaxDelayMs = 3600000;  // one hour
constexpr double kMaxMebibytes = 65536;

}  // namespace

int main(int argc, char** argv) {
    Simulator::SimulatorOptions options;
    options.commandAddress = "tcp://127.0.0.1:5555";
    options.notificationAddress = "tcp://127.0.0.1:5556";
    bool ephemeral = false;
    bool curve = false;
    bool verbose = false;
    long long delayMs = 0;
    long long noticeDelayMs = 0;
    long long jitterMs = 0;
    std::size_t stateFileLimitMb = options.stateFileLimitBytes >> 20;
    std::size_t peerQueueMb = options.peerQueueBytes >> 20;
    std::size_t sendQueueMb = options.sendQueueBytes >> 20;
    std::size_t delayedMb = options.delayedReplyBytes >> 20;
    std::size_t subscriptionsMb = options.subscriptionBytes >> 20;

    CLI::App app{"tessel-sim: a replay-server simulator speaking the Tessel protocol over ZeroMQ.\n"
                 "Prints \"commands: <endpoint>\" and \"notifications: <endpoint>\", then serves\n"
                 "until SIGINT or SIGTERM. SIGHUP restarts it; SIGUSR1 takes server 1 off the\n"
                 "network, SIGUSR2 brings it back. An address in use stops the start at once;\n"
                 "after a restart it is tried again every second. Replies for peers that do not\n"
                 "read, and delayed replies, are bounded in bytes (the -mb options): beyond,\n"
                 "they are dropped, counted and logged.",
                 "tessel-sim"};
    app.footer("Examples:\n"
               "  tessel-sim                          # tcp://127.0.0.1:5555 and :5556\n"
               "  tessel-sim --ephemeral --clips 20000 --part-size 1000\n"
               "  tessel-sim --curve --state-file sim.state\n"
               "  tessel-sim --drop-fraction 0.01 --reply-delay-ms 5 --reply-jitter-ms 20");
    app.add_option("--commands", options.commandAddress, "Address the command socket binds")
        ->capture_default_str();
    app.add_option("--notifications", options.notificationAddress,
                   "Address the notification publisher binds")
        ->capture_default_str();
    app.add_flag("--ephemeral", ephemeral, "Bind free ports on 127.0.0.1 instead");
    app.add_option("--curve-secret-key", options.curveSecretKey,
                   "Encrypt with this CURVE secret key (Z85)");
    app.add_flag("--curve", curve, "Encrypt with a fresh CURVE key pair (public key printed)");
    app.add_option("--seed", options.seed, "Seed of the content and of the fault draws")
        ->capture_default_str();
    app.add_option("--servers", options.servers, "Servers")
        ->capture_default_str()
        ->check(Within(0, kMaxCount));
    app.add_option("--players", options.playersPerServer, "Players per server")
        ->capture_default_str()
        ->check(Within(0, kMaxCount));
    app.add_option("--recorders", options.recordersPerServer, "Recorders per server")
        ->capture_default_str()
        ->check(Within(0, kMaxCount));
    app.add_option("--clips", options.clips, "Clips seeded")
        ->capture_default_str()
        ->check(Within(0, kMaxCount));
    app.add_option("--playlists", options.playlists, "Playlists seeded")
        ->capture_default_str()
        ->check(Within(0, kMaxCount));
    app.add_option("--groups", options.anglesGroups, "Angles groups seeded")
        ->capture_default_str()
        ->check(Within(0, kMaxCount));
    app.add_option("--part-size", options.partSize, "Most items in one message of a listing")
        ->capture_default_str()
        ->check(Within(1, kMaxCount));
    app.add_option("--mass-threshold", options.massThreshold,
                   "Clips beyond which one mass notification replaces one per clip")
        ->capture_default_str()
        ->check(Within(0, kMaxCount));
    app.add_option("--state-file", options.stateFile,
                   "Keep clips, playlists and angles groups in this file across restarts");
    app.add_option("--state-file-limit-mb", stateFileLimitMb,
                   "Refuse a longer state file (or one that is not a regular file)")
        ->capture_default_str()
        ->check(Within(1, kMaxMebibytes));
    app.add_option("--peer-queue-mb", peerQueueMb,
                   "Replies waiting for one peer that does not read; beyond, dropped")
        ->capture_default_str()
        ->check(Within(1, kMaxMebibytes));
    app.add_option("--send-queue-mb", sendQueueMb,
                   "Replies waiting for all such peers together; beyond, dropped")
        ->capture_default_str()
        ->check(Within(1, kMaxMebibytes));
    app.add_option("--delay-queue-mb", delayedMb,
                   "Replies held back by --reply-delay-ms; beyond, dropped")
        ->capture_default_str()
        ->check(Within(1, kMaxMebibytes));
    app.add_option("--subscriptions-mb", subscriptionsMb,
                   "Subscription topics kept (for waiting on subscribers); beyond, not kept")
        ->capture_default_str()
        ->check(Within(1, kMaxMebibytes));
    app.add_option("--reply-delay-ms", delayMs, "Delay every reply (at most an hour)")
        ->check(Within(0, kMaxDelayMs));
    app.add_option("--reply-jitter-ms", jitterMs, "Add a random delay up to this (at most an hour)")
        ->check(Within(0, kMaxDelayMs));
    app.add_option("--drop-fraction", options.faults.dropFraction, "Never answer this fraction")
        ->check(Within(0, 1));
    app.add_option("--malformed-fraction", options.faults.malformedFraction,
                   "Answer this fraction with undecodable bytes")
        ->check(Within(0, 1));
    app.add_option("--duplicate-fraction", options.faults.duplicateFraction,
                   "Send this fraction's final reply twice")
        ->check(Within(0, 1));
    app.add_flag("--silent", options.faults.silent, "Read commands and never answer");
    app.add_option("--notification-drop-fraction", options.faults.notificationDropFraction,
                   "Never publish this fraction of notifications")
        ->check(Within(0, 1));
    app.add_option("--notification-delay-fraction", options.faults.notificationDelayFraction,
                   "Publish this fraction of notifications late, after later ones")
        ->check(Within(0, 1));
    app.add_option("--notification-delay-ms", noticeDelayMs,
                   "How late the delayed notifications are published (at most an hour)")
        ->check(Within(0, kMaxDelayMs));
    app.add_flag("-v,--verbose", verbose, "Log what the simulator does to standard error");
    CLI11_PARSE(app, argc, argv);

    options.stateFileLimitBytes = stateFileLimitMb << 20;
    options.peerQueueBytes = peerQueueMb << 20;
    options.sendQueueBytes = sendQueueMb << 20;
    options.delayedReplyBytes = delayedMb << 20;
    options.subscriptionBytes = subscriptionsMb << 20;
    options.faults.replyDelay = std::chrono::milliseconds(delayMs);
    options.faults.replyJitter = std::chrono::milliseconds(jitterMs);
    options.faults.notificationDelay = std::chrono::milliseconds(noticeDelayMs);
    if (ephemeral) {
        options.commandAddress = options.notificationAddress = "tcp://127.0.0.1:*";
    }
    if (curve && options.curveSecretKey.empty()) {
        options.curveSecretKey = Simulator::GenerateCurveKeyPair().second;
    }
    auto& loggers = Logging::Loggers::GetInstance();
    loggers.SetLoggerFactory(std::make_unique<Logging::StandardErrorLoggerFactory>());
    loggers.SetLoggingLevel(verbose ? Logging::ILogger::Trace : Logging::ILogger::Warning);

    // The signals are taken by sigwait below; block them before any thread starts.
    sigset_t signals;
    sigemptyset(&signals);
    for (int signal : {SIGINT, SIGTERM, SIGHUP, SIGUSR1, SIGUSR2}) {
        sigaddset(&signals, signal);
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    std::unique_ptr<Simulator::Simulator> simulator;
    try {
        simulator = std::make_unique<Simulator::Simulator>(options);
    } catch (const std::exception& failure) {
        const std::string text = failure.what();
        std::cerr << "tessel-sim: " << text << '\n';
        if (text.rfind("cannot bind", 0) == 0) {
            std::cerr << "tessel-sim: use --commands and --notifications for other addresses, "
                         "or --ephemeral for free ports\n";
        }
        return EXIT_FAILURE;
    }
    std::cout << "commands: " << simulator->CommandEndpoint() << '\n'
              << "notifications: " << simulator->NotificationEndpoint() << '\n';
    if (!simulator->PublicKey().empty()) {
        std::cout << "public key: " << simulator->PublicKey() << '\n';
    }
    std::cout << std::flush;

    for (;;) {
        int signal = 0;
        if (sigwait(&signals, &signal) != 0) {
            continue;
        }
        if (signal == SIGHUP) {
            try {
                simulator->Restart();
                std::cerr << "tessel-sim: restarted\n";
            } catch (const std::exception& failure) {
                std::cerr << "tessel-sim: restart: " << failure.what() << '\n';
            }
        } else if (signal == SIGUSR1) {
            simulator->DropOffNetwork(1);
        } else if (signal == SIGUSR2) {
            simulator->ReturnToNetwork(1);
        } else {
            break;
        }
    }
    simulator->Stop();
    const auto stats = simulator->GetStatistics();
    std::cerr << "tessel-sim: stopped after " << stats.commandsReceived << " commands, "
              << stats.repliesSent << " replies, " << stats.notificationsPublished
              << " notifications\n";
    return EXIT_SUCCESS;
}

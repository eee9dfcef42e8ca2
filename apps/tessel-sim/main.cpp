// tessel-sim: a replay-server simulator on ZeroMQ, for developing and testing applications without
// a server. Prints the endpoints it listens on, one per line, then serves until SIGINT or SIGTERM.
// SIGHUP restarts it (sockets closed and bound again); SIGUSR1 takes server 1 off the network and
// SIGUSR2 brings it back.

#include <signal.h>

#include <cstdlib>
#include <iostream>
#include <memory>

#include <CLI/CLI.hpp>

#include <Korvo/Plexis/Tessel/Logging/Loggers.h>
#include <Korvo/Plexis/Tessel/Logging/StandardErrorLoggerFactory.h>
#include <Korvo/Plexis/Tessel/Simulator/Simulator.h>

namespace {

using namespace Korvo::Plexis::Tessel;

}  // namespace

int main(int argc, char** argv) {
    Simulator::SimulatorOptions options;
    options.commandAddress = "tcp://127.0.0.1:5555";
    options.notificationAddress = "tcp://127.0.0.1:5556";
    bool ephemeral = false;
    bool curve = false;
    bool verbose = false;
    long long delayMs = 0;
    long long jitterMs = 0;

    CLI::App app{"tessel-sim: a replay-server simulator speaking the Tessel protocol over ZeroMQ.\n"
                 "Prints \"commands: <endpoint>\" and \"notifications: <endpoint>\", then serves\n"
                 "until SIGINT or SIGTERM. SIGHUP restarts it; SIGUSR1 takes server 1 off the\n"
                 "network, SIGUSR2 brings it back.",
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
    app.add_option("--servers", options.servers, "Servers")->capture_default_str();
    app.add_option("--players", options.playersPerServer, "Players per server")
        ->capture_default_str();
    app.add_option("--recorders", options.recordersPerServer, "Recorders per server")
        ->capture_default_str();
    app.add_option("--clips", options.clips, "Clips seeded")->capture_default_str();
    app.add_option("--playlists", options.playlists, "Playlists seeded")->capture_default_str();
    app.add_option("--groups", options.anglesGroups, "Angles groups seeded")->capture_default_str();
    app.add_option("--part-size", options.partSize, "Most items in one message of a listing")
        ->capture_default_str()
        ->check(CLI::PositiveNumber);
    app.add_option("--mass-threshold", options.massThreshold,
                   "Clips beyond which one mass notification replaces one per clip")
        ->capture_default_str();
    app.add_option("--state-file", options.stateFile,
                   "Keep clips, playlists and angles groups in this file across restarts");
    app.add_option("--reply-delay-ms", delayMs, "Delay every reply")->check(CLI::NonNegativeNumber);
    app.add_option("--reply-jitter-ms", jitterMs, "Add a random delay up to this")
        ->check(CLI::NonNegativeNumber);
    app.add_option("--drop-fraction", options.faults.dropFraction, "Never answer this fraction")
        ->check(CLI::Range(0.0, 1.0));
    app.add_option("--malformed-fraction", options.faults.malformedFraction,
                   "Answer this fraction with undecodable bytes")
        ->check(CLI::Range(0.0, 1.0));
    app.add_option("--duplicate-fraction", options.faults.duplicateFraction,
                   "Send this fraction's final reply twice")
        ->check(CLI::Range(0.0, 1.0));
    app.add_flag("--silent", options.faults.silent, "Read commands and never answer");
    app.add_flag("-v,--verbose", verbose, "Log what the simulator does to standard error");
    CLI11_PARSE(app, argc, argv);

    options.faults.replyDelay = std::chrono::milliseconds(delayMs);
    options.faults.replyJitter = std::chrono::milliseconds(jitterMs);
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
        std::cerr << "tessel-sim: " << failure.what() << '\n';
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
            simulator->Restart();
            std::cerr << "tessel-sim: restarted\n";
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

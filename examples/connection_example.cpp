// Drives a replay server through `Connection`: lists the clips, loads the first on a player,
// plays it at half speed, jogs it through the latest-value lane and reads the player's state.
//
//     connection_example                      starts tessel-sim on free ports and drives it
//     connection_example tcp://host:5555      drives the server at that command endpoint
//
// Without an endpoint the simulator is looked for beside this program's build (the path CMake
// gives) or on the PATH, and stopped at the end.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <string>

#include <Korvo/Plexis/Tessel/Client.h>

#ifndef KORVO_TESSEL_SIM
#define KORVO_TESSEL_SIM "tessel-sim"
#endif

namespace {

namespace Commands = Korvo::Plexis::Tessel::HighLevelOperations::Commands;
namespace Data = Korvo::Plexis::Data;
using Korvo::Plexis::Tessel::Client::Connection;
using Korvo::Plexis::Tessel::Client::ConnectionOptions;
using Korvo::Plexis::Tessel::Client::Outcome;

// tessel-sim as a child process on free ports; stopped by the destructor.
class Simulator {
public:
    Simulator() {
        int output[2];
        if (pipe(output) != 0) {
            return;
        }
        pid = fork();
        if (pid == 0) {
            dup2(output[1], STDOUT_FILENO);
            close(output[0]);
            execlp(KORVO_TESSEL_SIM, KORVO_TESSEL_SIM, "--ephemeral", static_cast<char*>(nullptr));
            _exit(127);
        }
        close(output[1]);
        FILE* lines = fdopen(output[0], "r");
        char line[512];
        while (lines != nullptr && endpoint.empty() && fgets(line, sizeof line, lines) != nullptr) {
            const std::string text(line);
            if (text.rfind("commands: ", 0) == 0) {
                endpoint = text.substr(10, text.find_last_not_of("\r\n") - 9);
            }
        }
        // The rest of its output is not read: keep the pipe open so that it never blocks on it
        // for a short run like this one.
    }
    ~Simulator() {
        if (pid > 0) {
            kill(pid, SIGTERM);
            waitpid(pid, nullptr, 0);
        }
    }
    std::string endpoint;

private:
    pid_t pid = -1;
};

}  // namespace

int main(int argc, char** argv) {
    std::unique_ptr<Simulator> simulator;
    ConnectionOptions options;
    options.name = "example";
    if (argc > 1) {
        options.commandEndPoint = argv[1];
    } else {
        simulator = std::make_unique<Simulator>();
        options.commandEndPoint = simulator->endpoint;
    }
    if (options.commandEndPoint.empty()) {
        std::cerr << "could not start " KORVO_TESSEL_SIM "; give a command endpoint\n";
        return 1;
    }

    Connection server(options);
    server.Watch([](Korvo::Common::Messaging::ConnectionState state) {
        std::cout << "link: " << Korvo::Common::Messaging::ToString(state) << "\n";
    });
    if (!server.WaitConnected(std::chrono::seconds(5))) {
        std::cerr << "no server at " << options.commandEndPoint << "\n";
        return 1;
    }

    // The parameters' class decides the command and what it may receive.
    auto clips = server.Send(Commands::GetClipsCommandParams{});
    if (clips.Wait() != Outcome::Replied || clips.Get<Commands::GetClipsCommandReply>() == nullptr ||
        clips.Get<Commands::GetClipsCommandReply>()->clips.empty()) {
        std::cerr << "no clips: " << ToString(clips.GetOutcome()) << " " << clips.Reason() << "\n";
        return 1;
    }
    const Data::Clips::Clip& clip = clips.Get<Commands::GetClipsCommandReply>()->clips.front();
    std::cout << clips.Get<Commands::GetClipsCommandReply>()->clips.size() << " clips; loading \""
              << Data::ToUtf8(clip.name) << "\"\n";

    const auto player = Data::Channels::Guid::PlayerOf(1, 0);
    Commands::LoadClipsCommandParams load;
    load.playersParameters[player].clip = Data::Guid(clip.umId);
    Commands::PlayCommandParams play;
    play.players = {player};
    play.speedNum = 1;
    play.speedDen = 2;
    for (auto outcome : {server.Send(load).Wait(), server.Send(play).Wait()}) {
        std::cout << "command: " << ToString(outcome) << "\n";
    }

    // Jog: only the latest value matters; older ones never queue behind a slow server.
    Korvo::Plexis::Tessel::Client::CallOptions<Commands::DialCommandParams> report;
    report.onDone = [](const auto& done) {  // on the connection's callback thread
        std::cout << "dial: " << ToString(done.GetOutcome()) << "\n";
    };
    Commands::DialCommandParams dial;
    dial.players = {player};
    dial.velocity = 10;
    auto last = server.SendLatest(dial, report);
    for (dial.velocity = 20; dial.velocity <= 50; dial.velocity += 10) {
        last = server.SendLatest(dial, report);  // each replaces the one still waiting, if any
    }
    last.Wait();  // the last value set is the last to reach the server

    auto channels = server.Send(Commands::GetChannelsCommandParams{});
    if (channels.Wait() == Outcome::Replied) {
        const auto& state =
            channels.Get<Commands::GetChannelsCommandReply>()->playerStates.at(player);
        std::cout << player.ToString() << ": " << Data::ToString(Data::PlayModeOf(state)) << ", "
                  << Data::ToString(Data::MaterialTypeOf(state)) << " loaded, speed "
                  << state.infoOnAir.speedNumerator << "/" << state.infoOnAir.speedDenominator
                  << "\n";
    }
    return 0;
}

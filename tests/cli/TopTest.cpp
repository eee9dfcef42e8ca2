// tessel top: the view drawn from a mirror of a simulator, --once in a pipe against a tessel-sim
// process, and the full-screen view driven through tmux while a player starts.

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <Korvo/Plexis/Tessel/Client/Mirror.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PlayCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StartCommandParams.h>
#include <Korvo/Plexis/Tessel/Simulator/Simulator.h>

#include "Text.h"
#include "Top.h"
#include "faults/SimulatorProcess.h"
#include "support/ChildProcess.h"
#include "support/Waiting.h"

namespace Korvo::Testing {
namespace {

using namespace std::chrono_literals;
using Plexis::Data::Channels::Guid;
using Plexis::Tessel::Cli::NextServerFilter;
using Plexis::Tessel::Cli::RenderTop;
using Plexis::Tessel::Cli::TopFilter;
using Plexis::Tessel::Client::Mirror;
using Plexis::Tessel::Client::MirrorOptions;
using Plexis::Tessel::Client::MirrorSnapshot;
using Plexis::Tessel::Client::Outcome;
using Plexis::Tessel::Simulator::Simulator;
namespace Commands = Plexis::Tessel::HighLevelOperations::Commands;

// The line of `lines` that starts with `start` after the indentation; empty when none.
std::string LineOf(const std::vector<std::string>& lines, const std::string& start) {
    for (const auto& line : lines) {
        if (line.find_first_not_of(' ') == line.find(start)) {
            return line;
        }
    }
    return "";
}

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// A clip of the catalogue: its identifier and its name.
std::pair<std::string, std::string> SomeClip(const MirrorSnapshot& snapshot) {
    std::pair<std::string, std::string> clip;
    snapshot.Source(0).ForEachClip([&](const auto& found) {
        clip = {found->umId, Plexis::Tessel::Cli::TextOf(found->name)};
    });
    return clip;
}

Commands::LoadClipsCommandParams LoadOf(const Guid& player, const std::string& clip) {
    Commands::LoadClipsCommandParams load;
    load.playersParameters[player].clip = Plexis::Data::Guid(clip);
    return load;
}

TEST(TopTest, ViewShowsStatesNamesAndSpeedsAndFiltersByServer) {
    Simulator simulator{{}};
    MirrorOptions options;
    options.sources.resize(1);
    options.sources[0].commandEndPoint = simulator.CommandEndpoint();
    options.sources[0].notificationEndPoints = {simulator.NotificationEndpoint()};
    Mirror mirror(options);
    ASSERT_TRUE(Eventually([&] { return mirror.Snapshot().Source(0).ClipCount() > 0; }));

    const Guid player = Guid::PlayerOf(1, 0);
    const auto [clip, name] = SomeClip(mirror.Snapshot());
    Commands::PlayCommandParams play;
    play.players = {player};
    play.speedNum = 1;
    play.speedDen = 2;
    Commands::StartCommandParams start;
    start.recorders = {Guid::RecorderOf(2, 4)};
    auto& connection = mirror.ConnectionOf(0);
    ASSERT_EQ(connection.Send(LoadOf(player, clip)).Wait(), Outcome::Replied);
    ASSERT_EQ(connection.Send(play).Wait(), Outcome::Replied);
    ASSERT_EQ(connection.Send(start).Wait(), Outcome::Replied);

    std::vector<std::string> lines;
    ASSERT_TRUE(Eventually([&] {
        lines = RenderTop(mirror.Snapshot(), {});
        return Contains(LineOf(lines, "player:1:0"), "playing") &&
               Contains(LineOf(lines, "recorder:2:4"), "recording");
    })) << ::testing::PrintToString(lines);
    const std::string playing = LineOf(lines, "player:1:0");
    EXPECT_TRUE(Contains(playing, "clip \"" + name + "\"")) << playing;  // by name, not umId
    EXPECT_TRUE(Contains(playing, "1/2")) << playing;
    EXPECT_TRUE(Contains(LineOf(lines, "player:1:1"), "idle"));
    EXPECT_TRUE(Contains(LineOf(lines, "recorder:2:5"), "stopped"));
    EXPECT_EQ(LineOf(lines, "server 1"), "server 1 replay-1  Live");
    EXPECT_EQ(LineOf(lines, "server 2"), "server 2 replay-2  Live");

    const auto snapshot = mirror.Snapshot();
    const auto onlyTwo = RenderTop(snapshot, TopFilter{2});
    EXPECT_EQ(LineOf(onlyTwo, "player:1:0"), "");
    EXPECT_EQ(LineOf(onlyTwo, "server 1"), "");
    EXPECT_NE(LineOf(onlyTwo, "player:2:0"), "");
    // `s` cycles: every server, 1, 2, every server.
    EXPECT_EQ(NextServerFilter(snapshot, std::nullopt), 1);
    EXPECT_EQ(NextServerFilter(snapshot, 1), 2);
    EXPECT_EQ(NextServerFilter(snapshot, 2), std::nullopt);
}

TEST(TopTest, OncePrintsOneViewInAPipeOrFailsWithoutAServer) {
    SimulatorProcess simulator;
    const auto result = RunProcess({TESSEL_BINARY, "-c", simulator.CommandEndpoint(), "-n",
                                    simulator.NotificationEndpoint(), "--timeout", "30", "top",
                                    "--once"},
                                   kPatience);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(Contains(result.out, "server 1 replay-1  Live\n")) << result.out;
    EXPECT_TRUE(Contains(result.out, "server 2 replay-2  Live\n")) << result.out;
    EXPECT_TRUE(Contains(result.out, "player:2:3")) << result.out;
    EXPECT_FALSE(Contains(result.out, "\x1b")) << "no escape sequences in a pipe";

    // Nothing listens there: no view, the no-server code.
    const auto nobody = RunProcess({TESSEL_BINARY, "-c", "tcp://127.0.0.1:1", "-n",
                                    "tcp://127.0.0.1:2", "--timeout", "0.5", "top", "--once"},
                                   kPatience);
    EXPECT_EQ(nobody.exitCode, 5) << nobody.err;
    EXPECT_EQ(nobody.out, "");
}

TEST(TopTest, TerminalViewFollowsAPlayAndRestoresTheTerminalOnQuit) {
    if (std::system("command -v tmux >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "tmux is not installed";
    }
    Simulator simulator{{}};
    // A tmux server of this test's own, so that nothing else's sessions are touched.
    const std::string socket = "tessel-top-" + std::to_string(::getpid());
    const auto tmux = [&socket](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"/usr/bin/env", "tmux", "-L", socket});
        return RunProcess(arguments, kPatience);
    };
    struct Server {
        std::function<RunResult(std::vector<std::string>)> tmux;
        ~Server() { tmux({"kill-server"}); }
    } server{tmux};
    // After top: its exit code and whether the terminal is line by line with echo again.
    const std::string shell = std::string(TESSEL_BINARY) + " -c " + simulator.CommandEndpoint() +
                              " -n " + simulator.NotificationEndpoint() +
                              " top; echo EXIT=$?; case $(stty -a) in *-icanon*|*-echo\\ *) echo "
                              "TERMINAL=raw;; *) echo TERMINAL=restored;; esac; sleep 600";
    ASSERT_EQ(tmux({"new-session", "-d", "-s", "top", "-x", "150", "-y", "40", shell}).exitCode,
              0);
    std::string screen;
    const auto shows = [&](const std::string& part, std::chrono::milliseconds limit) {
        return Eventually(
            [&] {
                screen = tmux({"capture-pane", "-p", "-t", "top"}).out;
                return Contains(screen, part);
            },
            limit);
    };
    ASSERT_TRUE(shows("server 2 replay-2  Live", kPatience)) << screen;
    EXPECT_TRUE(Contains(screen, "all servers")) << screen;

    // Another client plays a clip: the view follows without a key pressed.
    MirrorOptions options;
    options.sources.resize(1);
    options.sources[0].commandEndPoint = simulator.CommandEndpoint();
    Plexis::Tessel::Client::Connection driver(options.sources[0]);
    Commands::PlayCommandParams play;
    play.players = {Guid::PlayerOf(2, 1)};
    play.speedNum = 1;
    play.speedDen = 1;
    auto clips = driver.Send(Commands::GetClipsCommandParams{});
    ASSERT_EQ(clips.Wait(), Outcome::Replied);
    const auto* listed = clips.Get<Commands::GetClipsCommandReply>();
    ASSERT_TRUE(listed != nullptr && !listed->clips.empty());
    ASSERT_EQ(driver.Send(LoadOf(*play.players.begin(), listed->clips.front().umId)).Wait(),
              Outcome::Replied);
    ASSERT_EQ(driver.Send(play).Wait(), Outcome::Replied);
    ASSERT_TRUE(shows("playing", 10s)) << screen;
    EXPECT_TRUE(Contains(screen.substr(screen.find("player:2:1")), "playing")) << screen;

    ASSERT_EQ(tmux({"send-keys", "-t", "top", "2"}).exitCode, 0);  // server 2 only
    ASSERT_TRUE(shows("server 2  (", kPatience)) << screen;
    EXPECT_FALSE(Contains(screen, "replay-1")) << screen;

    ASSERT_EQ(tmux({"send-keys", "-t", "top", "q"}).exitCode, 0);
    ASSERT_TRUE(shows("TERMINAL=", kPatience)) << screen;
    EXPECT_TRUE(Contains(screen, "EXIT=0")) << screen;
    EXPECT_TRUE(Contains(screen, "TERMINAL=restored")) << screen;
    EXPECT_FALSE(Contains(screen, "player:2:1")) << "the alternate screen was left\n" << screen;
}

}  // namespace
}  // namespace Korvo::Testing

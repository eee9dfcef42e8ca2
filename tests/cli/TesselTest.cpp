// The command-line client run as a process against a simulator in the test process: what each
// subcommand prints and returns, the JSON it writes, its failures, watch and the demo.

#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Tessel/Client/CommandTypes.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandReply.h>
#include <Korvo/Plexis/Tessel/Json/CommandParamsJson.h>
#include <Korvo/Plexis/Tessel/Json/CommandReplyJson.h>
#include <Korvo/Plexis/Tessel/Json/NotificationJson.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>
#include <Korvo/Plexis/Tessel/Simulator/Simulator.h>

#include "Errors.h"
#include "Output.h"
#include "Session.h"
#include "Text.h"
#include "support/ChildProcess.h"
#include "support/Samples.h"
#include "support/ZmqPeers.h"

namespace Korvo::Testing {
namespace {

using namespace std::chrono_literals;
using Plexis::Tessel::Cli::ExitCode;
using Plexis::Tessel::Simulator::Simulator;
using Plexis::Tessel::Simulator::SimulatorOptions;
using Json = nlohmann::json;
namespace Commands = Plexis::Tessel::HighLevelOperations::Commands;

constexpr auto kPatience = 60s;

int Code(ExitCode code) {
    return static_cast<int>(code);
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

class TesselTest : public ::testing::Test {
protected:
    static SimulatorOptions Options() {
        SimulatorOptions options;
        options.partSize = 7;  // the 50 seeded clips come in 8 messages
        return options;
    }

    std::vector<std::string> CommandLine(const std::vector<std::string>& arguments) const {
        std::vector<std::string> line{TESSEL_BINARY,
                                      "--commands",
                                      simulator.CommandEndpoint(),
                                      "--notifications",
                                      simulator.NotificationEndpoint(),
                                      "--timeout",
                                      "30"};
        line.insert(line.end(), arguments.begin(), arguments.end());
        return line;
    }

    RunResult Tessel(const std::vector<std::string>& arguments, const std::string& input = "") {
        return RunProcess(CommandLine(arguments), kPatience, input);
    }

    // The reply lines of a --json run, parsed.
    std::vector<Json> JsonReplies(const std::vector<std::string>& arguments) {
        auto arguments_json = arguments;
        arguments_json.push_back("--json");
        const auto result = Tessel(arguments_json);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        std::vector<Json> replies;
        for (const auto& line : Lines(result.out)) {
            replies.push_back(Json::parse(line));
        }
        return replies;
    }

    Json PlayerState(const std::string& player) {
        const auto replies = JsonReplies({"channels"});
        return replies.empty() ? Json() : replies.back().at("playerStates").at(player);
    }

    Simulator simulator{Options()};
};

TEST_F(TesselTest, ListingsShowTheServersContent) {
    const struct {
        std::vector<std::string> arguments;
        std::vector<std::string> shown;
        std::string hidden;
        std::size_t lines;  // 0: any number
    } cases[] = {
        {{"servers"}, {"replay-1", "replay-2"}, "", 0},
        {{"channels", "--server", "2"}, {"player:2:3", "recorder:2:5"}, "player:1:0", 0},
        // The clips come in parts; the filter sees all of them and keeps one, under a header.
        {{"clips", "--name", "clip 00049"}, {"Clip 00049"}, "Clip 00048", 2},
        {{"trains"}, {}, "", 5},  // two recorders on each server
        {{"playlists"}, {"Playlist 3"}, "", 0},
        {{"ping"}, {"pong from " + simulator.CommandEndpoint()}, "", 0},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.arguments.front());
        const auto result = Tessel(test.arguments);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.err, "");  // standard error is no terminal: no progress line
        for (const auto& text : test.shown) {
            EXPECT_NE(result.out.find(text), std::string::npos) << result.out;
        }
        EXPECT_TRUE(test.hidden.empty() || result.out.find(test.hidden) == std::string::npos)
            << result.out;
        EXPECT_TRUE(test.lines == 0 || Lines(result.out).size() == test.lines) << result.out;
    }
}

TEST_F(TesselTest, CallPrintsEachPartOfAListingAsOneJsonLine) {
    const auto replies = JsonReplies({"call", "GetClipsCommand"});
    ASSERT_EQ(replies.size(), 8u);
    std::size_t clips = 0;
    for (const auto& reply : replies) {
        EXPECT_EQ(reply.at("type"), "GetClipsCommandReply");
        clips += reply.at("clips").size();
        // Each line is a reply of the library's JSON form.
        EXPECT_NO_THROW(Plexis::Tessel::Json::CommandReplyFromJson(reply.dump()));
    }
    EXPECT_EQ(clips, 50u);

    // A filter applies across the parts, and --limit counts over all of them.
    std::size_t kept = 0;
    for (const auto& reply : JsonReplies({"clips", "--limit", "9"})) {
        kept += reply.at("clips").size();
    }
    EXPECT_EQ(kept, 9u);
}

TEST_F(TesselTest, CallTakesParametersInlineFromAFileAndFromStandardInput) {
    auto result = Tessel({"call", "GetServersCommand", "{\"serverRange\": 0}", "--json"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(Json::parse(result.out).at("servers").size(), 2u);

    const std::string path =
        ::testing::TempDir() + "tessel-params-" + std::to_string(::getpid()) + ".json";
    std::ofstream(path) << R"({"players": ["player:1:0"], "setBlackScreen": true})";
    result = Tessel({"call", "GoIdleCommand", "@" + path});
    std::remove(path.c_str());
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_NE(result.out.find("player:1:0  ok"), std::string::npos) << result.out;

    result = Tessel({"call", "StartRecordingCommand", "-", "--json"},
                    R"({"recorders": ["recorder:2:4"]})");
    EXPECT_EQ(result.exitCode, 0) << result.err;
    const auto reply = Json::parse(result.out);
    EXPECT_EQ(reply.at("type"), "ChannelCommandReply");
    EXPECT_EQ(Tessel({"record", "stop", "2:4"}).exitCode, 0);
}

TEST_F(TesselTest, PlayerCommandsDriveAPlayer) {
    const auto listing = JsonReplies({"clips", "--limit", "1"});
    ASSERT_FALSE(listing.empty());
    const std::string clip = listing.front().at("clips").at(0).at("umId");

    auto result = Tessel({"load", "1:0", clip});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(PlayerState("player:1:0").at("playMode"), 1);  // cued

    ASSERT_EQ(Tessel({"play", "player:1:0", "--speed", "1/2"}).exitCode, 0);
    auto state = PlayerState("player:1:0");
    EXPECT_EQ(state.at("playMode"), 2);
    EXPECT_EQ(state.at("infoOnAir").at("speedNumerator"), 1);
    EXPECT_EQ(state.at("infoOnAir").at("speedDenominator"), 2);

    ASSERT_EQ(Tessel({"pause", "1:0"}).exitCode, 0);
    EXPECT_EQ(PlayerState("player:1:0").at("infoOnAir").at("speedNumerator"), 0);

    const std::int64_t before = PlayerState("player:1:0").at("currentTimepoint");
    ASSERT_EQ(Tessel({"step", "1:0", "--fields", "10"}).exitCode, 0);
    ASSERT_EQ(Tessel({"step", "1:0", "--fields=-4"}).exitCode, 0);
    EXPECT_EQ(PlayerState("player:1:0").at("currentTimepoint").get<std::int64_t>(), before + 6);

    result = Tessel({"idle", "1:0"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(PlayerState("player:1:0").at("playMode"), 0);
}

TEST_F(TesselTest, RecordingMakesAClipAndMultiviewerDataIsReadBack) {
    const auto clips = simulator.ClipCount();
    ASSERT_EQ(Tessel({"record", "start", "1:4"}).exitCode, 0);
    const auto again = Tessel({"record", "start", "recorder:1:4"});
    EXPECT_EQ(again.exitCode, Code(ExitCode::Failed));
    EXPECT_NE(again.out.find("recorder:1:4  failed (1, 5): already recording"), std::string::npos)
        << again.out;
    ASSERT_EQ(Tessel({"record", "stop", "1:4"}).exitCode, 0);
    EXPECT_EQ(simulator.ClipCount(), clips + 1);

    ASSERT_EQ(Tessel({"multiviewer", "set", "1:1", "--message", "Replay one", "--post-roll", "yes"})
                  .exitCode,
              0);
    const auto result = Tessel({"multiviewer", "get"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    // Only what was given is set: the message and post-roll columns, nothing else.
    EXPECT_NE(result.out.find("\nplayer:1:1  \"Replay one\"  -        -        yes        -"),
              std::string::npos)
        << result.out;
}

TEST_F(TesselTest, EachFailureHasItsExitCodeAndOneLineOnStandardError) {
    struct Case {
        std::vector<std::string> arguments;
        ExitCode code;
        std::string message;
    };
    const std::string nowhere =
        "ipc://" + ::testing::TempDir() + "tessel-nobody-" + std::to_string(::getpid());
    const Case cases[] = {
        {{"play", "1:2"}, ExitCode::Failed, "player:1:2: failed (1, 3): nothing loaded"},
        {{"call", "DeleteClipsCommand", R"({"clips": ["nothing"]})"},
         ExitCode::Failed,
         "no such clip"},
        {{"play", "one"}, ExitCode::Usage, "\"one\" is not a channel"},
        {{"play", "1:0", "--speed", "1/0"}, ExitCode::Usage, "is not a speed"},
        {{"plya", "1:0"}, ExitCode::Usage, "unknown subcommand \"plya\" (did you mean \"play\"?)"},
        {{"record", "strat", "1:4"}, ExitCode::Usage, "unknown subcommand \"strat\""},
        {{"--notifications", "tcp://nohost", "watch"}, ExitCode::Usage, "bad endpoint"},
        {{"-k", "garbage", "ping"}, ExitCode::Usage, "bad server key"},
        {{"-t", "1e10", "ping"}, ExitCode::Usage, "--timeout: \"1e10\" is not a number"},
        {{"-t", "nan", "ping"}, ExitCode::Usage, "--timeout"},
        {{"record"}, ExitCode::Usage, "subcommand"},
        {{"ping", "--no-such-option"}, ExitCode::Usage, "--no-such-option"},
        {{"call", "PlayCommand", R"({"players": [)"}, ExitCode::BadInput, "(Syntax)"},
        {{"call", "PlayCommand", R"({"players": [], "bogus": 1})"},
         ExitCode::BadInput,
         "(UnknownField): bogus"},
        {{"call", "PlayCommand", R"({"players": ["deck:1"]})"}, ExitCode::BadInput, "(BadChannel)"},
        {{"call", "PlayCommand", "{}"}, ExitCode::BadInput, "(MissingField): players"},
        {{"call", "PlayCommand", R"({"players": [], "speedNum": 1, "speedNum": 2})"},
         ExitCode::BadInput,
         "speedNum: the key \"speedNum\" occurs twice"},
        {{"call", "PlayFasterCommand"}, ExitCode::BadInput, "(UnknownName)"},
        {{"call", "PingCommand", "@/no/such/file"},
         ExitCode::BadInput,
         "cannot read /no/such/file: No such file or directory"},
        {{"call", "PingCommand", "@/dev/zero"}, ExitCode::BadInput, "over the limit of 16 MiB"},
        {{"--commands", nowhere, "--timeout", "0.3", "ping"},
         ExitCode::NoServer,
         "no server at " + nowhere + " (No such file or directory): start the server"},
        // An encrypting client meets a plain server: the handshake never completes.
        {{"--server-key", std::string(40, '0'), "--log-level", "off", "--timeout", "0.5", "ping"},
         ExitCode::NoServer,
         "accepts connections but the encrypted handshake did not complete"},
        {{"--notifications", nowhere, "--timeout", "0.3", "watch"},
         ExitCode::NoServer,
         "no server at " + nowhere},
    };
    for (const auto& test : cases) {
        const auto result = Tessel(test.arguments);
        SCOPED_TRACE(test.arguments.front() + " " + test.arguments.back());
        EXPECT_EQ(result.exitCode, Code(test.code)) << result.err;
        const auto lines = Lines(result.err);
        ASSERT_FALSE(lines.empty());
        // Only watch may have announced itself first; the failure is one line, the last.
        EXPECT_TRUE(lines.size() == 1 ||
                    (lines.size() == 2 && lines[0].find("watching") != std::string::npos))
            << result.err;
        EXPECT_NE(lines.back().find(test.message), std::string::npos) << result.err;
    }

    // A server that reads commands and never answers: the link is up, the reply never comes.
    Plexis::Tessel::Simulator::Faults silent;
    silent.silent = true;
    simulator.SetFaults(silent);
    const auto result = Tessel({"--timeout", "0.3", "ping"});
    EXPECT_EQ(result.exitCode, Code(ExitCode::TimedOut)) << result.err;
    EXPECT_EQ(result.err.rfind("tessel: no reply to PingCommand within 0.3 s: the link is up", 0),
              0u)
        << result.err;
}

// A server of our own that answers a listing with parts and never with the final: each part is
// shown as it arrives, and what was shown stays whole when a time-out or a signal ends the wait.
// A clip name carrying a terminal escape reaches the terminal escaped, and JSON stays valid.
TEST_F(TesselTest, ListingPartsAreShownAsTheyArriveAndStayWholeWhenTheWaitEnds) {
    namespace Wire = Plexis::Tessel::Serialization::Thrift::Commands::Generated;
    const auto partPayload = [](int number) {
        Commands::GetClipsCommandReply part(Plexis::Data::Guid("list-1"));
        auto clip = Samples::Clip(number);
        clip.name = Plexis::Data::Clips::AsciiOrUtf16String(
            "part " + std::to_string(number) + " \x1b]0;owned\x07", false);
        part.clips = {clip};
        Wire::GetClipsCommandReply wire;
        EXPECT_TRUE((
            Plexis::Tessel::Serialization::Thrift::ToThriftConverter<Commands::GetClipsCommandReply,
                                                                     Wire::GetClipsCommandReply>()
                .To(part, wire)
                .success));
        const auto buffer =
            Common::Serialization::SerializerImpl<Wire::GetClipsCommandReply>().Serialize(wire);
        return std::string(reinterpret_cast<const char*>(buffer->Pointer()), buffer->Size());
    };
    struct Case {
        bool json;
        bool interrupt;  // SIGINT after the parts, else the time-out ends the wait
    };
    for (const Case test : {Case{true, true}, Case{false, false}}) {
        SCOPED_TRACE(test.json ? "json" : "table");
        RouterPeer server;
        std::vector<std::string> line{
            TESSEL_BINARY, "--commands", server.Address(),  "--timeout",
            "1",           "call",       "GetClipsCommand", R"({"commandGuid": "list-1"})"};
        if (test.json) {
            line.push_back("--json");
        }
        if (test.interrupt) {
            line[4] = "30";
        }
        ChildProcess tessel(line);
        const auto command = server.Receive();
        ASSERT_TRUE(command.has_value());
        for (int number = 1; number <= 3; ++number) {
            server.Reply(command->at(0), TicketOf(command->at(1)), "[part]GetClipsCommandReply",
                         partPayload(number));
        }
        if (test.interrupt) {
            // The third part is on the terminal while the final is still awaited.
            ASSERT_TRUE(tessel.ReadLineUntil(
                [](const std::string& text) { return text.find("part 3") != std::string::npos; },
                kPatience));
            tessel.Signal(SIGINT);
            EXPECT_EQ(tessel.Wait(kPatience), 128 + SIGINT) << tessel.Err();
        } else {
            EXPECT_EQ(tessel.Wait(kPatience), Code(ExitCode::TimedOut)) << tessel.Err();
        }
        const auto lines = Lines(tessel.Out());
        ASSERT_EQ(lines.size(), test.json ? 3u : 4u) << tessel.Out();  // a table has a header
        EXPECT_EQ(tessel.Out().find('\x1b'), std::string::npos) << tessel.Out();
        for (std::size_t index = 0; index < lines.size(); ++index) {
            if (test.json) {
                EXPECT_EQ(Json::parse(lines[index]).at("clips").at(0).at("name"),
                          "part " + std::to_string(index + 1) + " \x1b]0;owned\x07");
            } else if (index > 0) {
                EXPECT_NE(
                    lines[index].find("part " + std::to_string(index) + " \\x1B]0;owned\\x07"),
                    std::string::npos)
                    << lines[index];
            }
        }
    }
}

// A server that takes a command and dies before answering: tessel says so at once instead of
// waiting out its time-out.
TEST(LinkOutcomeTest, AServerDyingMidCommandEndsTesselAtOnceWithTheBadReplyCode) {
    auto server = std::make_unique<RouterPeer>();
    ChildProcess tessel({TESSEL_BINARY, "--commands", server->Address(), "--timeout", "60",
                         "ping"});
    ASSERT_TRUE(server->Receive(kPatience));
    const auto died = std::chrono::steady_clock::now();
    server.reset();
    EXPECT_EQ(tessel.Wait(kPatience), Code(ExitCode::BadReply)) << tessel.Err();
    EXPECT_LT(std::chrono::steady_clock::now() - died, 20s);
    EXPECT_NE(tessel.Err().find("may have run"), std::string::npos) << tessel.Err();
}

// Failures of this host, not of the server: a reader of standard output that has gone (SIGPIPE
// ignored, as some shells and supervisors do), and a process out of file descriptors. Each ends
// the tool promptly with code 7 and says why, instead of hanging or aborting.
TEST_F(TesselTest, LocalFailuresEndTheToolWithTheirCode) {
    const auto shell = [this](const std::string& prefix, const std::vector<std::string>& arguments,
                              const std::string& suffix) {
        std::string script = prefix + " \"$@\"" + suffix;
        std::vector<std::string> line{"/bin/sh", "-c", script, "sh"};
        for (const auto& argument : CommandLine(arguments)) {
            line.push_back(argument);
        }
        return line;
    };
    ChildProcess watch(shell("trap '' PIPE; {", {"watch", "--json", "ChannelStatus"},
                             "; echo \"exit $?\" >&2; } | head -n 1"));
    ASSERT_TRUE(simulator.WaitForSubscriber("ChannelStatus", kPatience));
    ASSERT_EQ(Tessel({"record", "start", "1:5"}).exitCode, 0);
    EXPECT_EQ(watch.Wait(kPatience), 0) << watch.Err();
    EXPECT_EQ(Lines(watch.Out()).size(), 1u) << watch.Out();
    EXPECT_NE(watch.Err().find("cannot write standard output: Broken pipe"), std::string::npos)
        << watch.Err();
    EXPECT_NE(watch.Err().find("exit 7"), std::string::npos) << watch.Err();

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizers' runtime needs file descriptors of its own";
#endif
    const auto starved = RunProcess(shell("ulimit -n 10; exec", {"ping"}, ""), kPatience);
    EXPECT_EQ(starved.exitCode, Code(ExitCode::Local)) << starved.err;
    EXPECT_NE(starved.err.find("Too many open files"), std::string::npos) << starved.err;
}

TEST_F(TesselTest, WatchPrintsNotificationsUntilInterrupted) {
    ChildProcess watch(CommandLine({"watch", "--json", "ChannelStatus"}));
    ASSERT_TRUE(simulator.WaitForSubscriber("ChannelStatus", kPatience));
    ASSERT_EQ(Tessel({"record", "start", "1:5"}).exitCode, 0);
    const auto line = watch.ReadLineUntil(
        [](const std::string& text) {
            return text.find("\"RecorderStateChanged\"") != std::string::npos;
        },
        kPatience);
    ASSERT_TRUE(line.has_value()) << watch.Out() << watch.Err();
    const auto decoded = Plexis::Tessel::Json::NotificationFromJson(*line);
    EXPECT_EQ(decoded.typeName, "RecorderStateChanged");
    EXPECT_EQ(Json::parse(*line).at("channelGuid"), "recorder:1:5");
    watch.Signal(SIGINT);
    EXPECT_EQ(watch.Wait(kPatience), 0) << watch.Err();

    // The readable form, ended by a count instead of a signal.
    ChildProcess counted(CommandLine({"watch", "--count", "1", "ClipCommand"}));
    ASSERT_TRUE(simulator.WaitForSubscriber("ClipCommand", kPatience));
    ASSERT_EQ(Tessel({"record", "stop", "1:5"}).exitCode, 0);
    EXPECT_EQ(counted.Wait(kPatience), 0) << counted.Err();
    const auto lines = Lines(counted.Out());
    ASSERT_EQ(lines.size(), 1u) << counted.Out();
    EXPECT_NE(lines[0].find("ClipCreationStarted"), std::string::npos) << lines[0];
    EXPECT_NE(lines[0].find("server 1"), std::string::npos) << lines[0];
}

TEST_F(TesselTest, DemoRunsToTheEnd) {
    const auto result = RunProcess({TESSEL_BINARY, "demo"}, kPatience);
    EXPECT_EQ(result.exitCode, 0) << result.out << result.err;
    EXPECT_NE(result.out.find("Demo finished"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("notification  ClipCreationFinished"), std::string::npos)
        << result.out;
}

// In-process: every command of the table, read from its JSON form as the tool reads it, reaches
// the server through its family's builders and comes back as a reply the tool can show.
TEST_F(TesselTest, EveryCommandIsRoutedToTheServer) {
    Plexis::Tessel::Cli::ConnectionSettings settings;
    settings.commandEndpoint = simulator.CommandEndpoint();
    settings.timeout = kPatience;
    Plexis::Tessel::Cli::Session session(settings);
    std::set<std::string> families;
    Plexis::Tessel::Client::ForEachCommand([&](auto* type) {
        using Params = std::remove_pointer_t<decltype(type)>;
        const std::string name(Plexis::Tessel::Client::CommandTraits<Params>::kName);
        SCOPED_TRACE(name);
        Params given;
        given.commandGuid = Plexis::Data::Guid("every-" + name);
        if constexpr (std::is_same_v<Params, Commands::SyncCommandParams>) {
            given.sourcePlayer = Plexis::Data::Channels::Guid::PlayerOf(1, 0);  // needs a source
        }
        const auto params = Plexis::Tessel::Json::CommandParamsFromJson(
            name, Plexis::Tessel::Json::CommandParamsToJson(given));
        families.insert(Plexis::Tessel::Cli::FamilyOf(name));
        const auto replies = session.Call(name, *params);
        ASSERT_FALSE(replies.empty());
        EXPECT_NE(Plexis::Tessel::Json::ReplyTypeNameOf(*replies.back()), "UnknownCommand");
        std::ostringstream shown;
        Plexis::Tessel::Cli::PrintReadable(replies, shown);
        EXPECT_FALSE(shown.str().empty());
    });
    EXPECT_EQ(families, (std::set<std::string>{"channel", "data"}));
}

TEST(TesselProgressTest, ShowsPartsOnlyWhenEnabledAndErasesTheLine) {
    Commands::GetClipsCommandReply part;
    part.clips.resize(3);
    Commands::GetClipsCommandReply last;
    last.clips.resize(1);

    std::ostringstream shown;
    {
        Plexis::Tessel::Cli::Progress progress(shown, true);
        progress.Add(part, false);
        progress.Add(part, false);
        progress.Add(last, true);
    }
    EXPECT_EQ(shown.str(),
              "\rreceiving clips: 1 part, 3 items\x1b[K\rreceiving clips: 2 parts, 6 items\x1b[K"
              "\rreceiving clips: 3 parts, 7 items\x1b[K\r\x1b[K");

    std::ostringstream single;
    Plexis::Tessel::Cli::Progress(single, true).Add(last, true);
    std::ostringstream disabled;
    Plexis::Tessel::Cli::Progress(disabled, false).Add(part, false);
    EXPECT_EQ(single.str(), "");
    EXPECT_EQ(disabled.str(), "");
}

TEST(TesselTextTest, ChannelsTextsAndStatusesReadAsAPersonWrites) {
    using Plexis::Data::Channels::Guid;
    using Plexis::Tessel::Cli::ParseChannel;
    EXPECT_EQ(ParseChannel("1:0", Guid::Player), Guid::PlayerOf(1, 0));
    EXPECT_EQ(ParseChannel("2:5", Guid::Recorder), Guid::RecorderOf(2, 5));
    EXPECT_EQ(ParseChannel("recorder:1:4", Guid::Player), Guid::RecorderOf(1, 4));
    for (const char* bad : {"", "1", "player:1", "deck:1:0", "1:0:0", "-1:0"}) {
        EXPECT_THROW(ParseChannel(bad, Guid::Player), Plexis::Tessel::Cli::CliError) << bad;
    }

    using Text = Plexis::Data::Clips::AsciiOrUtf16String;
    EXPECT_EQ(
        Plexis::Tessel::Cli::TextOf(Text(std::string("\0G\0o\0\xe9\xd8\x3d\xde\x00", 10), true)),
        "Go\xc3\xa9\xf0\x9f\x98\x80");
    // A lone surrogate and an odd last byte are shown, not dropped silently.
    EXPECT_EQ(Plexis::Tessel::Cli::TextOf(Text(std::string("\xd8\x3d\0A\0", 5), true)), "?A?");

    // Text from the network reaches a terminal with its controls and bad bytes escaped.
    const std::pair<std::string, std::string> shown[] = {
        {"Goal \xc3\xa9", "Goal \xc3\xa9"},
        {"\x1b[2J", "\\x1B[2J"},
        {"a\tb\r\x7f", "a\\x09b\\x0D\\x7F"},
        {"\xc2\x9b"
         "31m",
         "\\xC2\\x9B31m"},                    // C1 CSI
        {"\xff\xc3", "\\xFF\\xC3"},           // not UTF-8, cut short
        {"\xed\xa0\x80", "\\xED\\xA0\\x80"},  // a surrogate
        {"a\\x1B", "a\\\\x1B"},               // an escape's look-alike stays apart
    };
    for (const auto& [text, expected] : shown) {
        EXPECT_EQ(Plexis::Tessel::Cli::Printable(text), expected) << text;
    }

    EXPECT_EQ(Plexis::Tessel::Cli::StatusText({0, 0}), "ok");
    EXPECT_EQ(Plexis::Tessel::Cli::StatusText({1, 10}), "failed (1, 10): in use");
    EXPECT_EQ(Plexis::Tessel::Cli::StatusText({2, 99}), "failed (2, 99)");
}

}  // namespace
}  // namespace Korvo::Testing

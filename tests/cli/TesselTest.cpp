// The command-line client run as a process against a simulator in the test process: what each
// subcommand prints and returns, the JSON it writes, its failures, watch, completion and the demo.

#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Tessel/Client/CommandTypes.h>
#include <Korvo/Plexis/Tessel/Client/Connection.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GoIdleCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandReply.h>
#include <Korvo/Plexis/Tessel/Json/CommandParamsJson.h>
#include <Korvo/Plexis/Tessel/Json/CommandReplyJson.h>
#include <Korvo/Plexis/Tessel/Json/NotificationJson.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>
#include <Korvo/Plexis/Tessel/Simulator/Simulator.h>

#include "Errors.h"
#include "Output.h"
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
    // Stopping shows the clip each recording became, found again by its umId; in both forms.
    auto stopped = Tessel({"record", "stop", "1:4"});
    ASSERT_EQ(stopped.exitCode, 0) << stopped.err;
    EXPECT_EQ(simulator.ClipCount(), clips + 1);
    const auto shown = Lines(stopped.out);
    ASSERT_EQ(shown.size(), 4u) << stopped.out;  // the result table, then the clip table
    std::istringstream row(shown[3]);
    std::string recorder, umId;
    row >> recorder;
    umId = shown[3].substr(shown[3].rfind(' ') + 1);
    EXPECT_EQ(recorder, "recorder:1:4");
    EXPECT_NE(shown[3].find("Rec "), std::string::npos) << shown[3];
    // The clips found by a umId, over every part of the listing.
    const auto clipsWith = [this](const std::string& prefix) {
        Json clips = Json::array();
        for (const auto& part : JsonReplies({"clips", "--umid", prefix})) {
            clips.insert(clips.end(), part.at("clips").begin(), part.at("clips").end());
        }
        return clips;
    };
    EXPECT_EQ(clipsWith(umId).size(), 1u);
    ASSERT_EQ(Tessel({"record", "start", "1:4", "2:4"}).exitCode, 0);
    const auto both = JsonReplies({"record", "stop", "1:4", "2:4"});
    ASSERT_EQ(both.size(), 3u);
    std::set<std::string> recorders;
    for (std::size_t index = 1; index < both.size(); ++index) {
        const auto& clip = both[index].at("createdClip");
        recorders.insert(clip.at("recorder").get<std::string>());
        const auto found = clipsWith(clip.at("umId"));
        ASSERT_EQ(found.size(), 1u);
        EXPECT_EQ(found.at(0).at("name"), clip.at("name"));
    }
    EXPECT_EQ(recorders, (std::set<std::string>{"recorder:1:4", "recorder:2:4"}));

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
    ChildProcess watch(shell("{", {"watch", "--json", "ChannelStatus"},
                             "; echo \"exit $?\" >&2; } | head -n 1"));
    ASSERT_TRUE(simulator.WaitForSubscriber("ChannelStatus", kPatience));
    ASSERT_EQ(Tessel({"record", "start", "1:5"}).exitCode, 0);
    EXPECT_EQ(watch.Wait(kPatience), 0) << watch.Err();
    EXPECT_EQ(Lines(watch.Out()).size(), 1u) << watch.Out();
    // The reader having gone is what a watch piped into head expects: no failure.
    EXPECT_NE(watch.Err().find("exit 0"), std::string::npos) << watch.Err();
    EXPECT_EQ(watch.Err().find("cannot write"), std::string::npos) << watch.Err();

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

// Every command's template, printed from the command table, is accepted back by call as it is
// and reaches the server, which knows the command; the template holds every field (reading it
// and writing it again drops nothing).
TEST_F(TesselTest, TemplatesAreAcceptedBackByCallForEveryCommand) {
    const auto listing = Tessel({"call", "--list", "--json"});
    ASSERT_EQ(listing.exitCode, 0) << listing.err;
    std::size_t commands = 0;
    for (const auto& line : Lines(listing.out)) {
        const auto entry = Json::parse(line);
        const std::string name = entry.at("command");
        SCOPED_TRACE(name);
        ++commands;
        EXPECT_EQ(entry.at("family"),
                  *Plexis::Tessel::Client::FamilyOfCommand(name) ==
                          Plexis::Tessel::Client::CommandFamily::Channel
                      ? "channel"
                      : "data");
        const auto shown = Tessel({"call", name, "--template"});
        ASSERT_EQ(shown.exitCode, 0) << shown.err;
        const auto params = Plexis::Tessel::Json::CommandParamsFromJson(name, shown.out);
        EXPECT_EQ(Json::parse(Plexis::Tessel::Json::CommandParamsToJson(*params)),
                  Json::parse(shown.out));
        // Sent as it is: the server may refuse the values (exit 1), never the command.
        const auto sent = Tessel({"call", name, "-", "--json"}, shown.out);
        EXPECT_TRUE(sent.exitCode == 0 || sent.exitCode == Code(ExitCode::Failed)) << sent.err;
        const auto replies = Lines(sent.out);
        ASSERT_FALSE(replies.empty()) << sent.err;
        EXPECT_NE(Json::parse(replies.back()).at("type"), "UnknownCommand");
    }
    EXPECT_EQ(commands, Plexis::Tessel::Json::CommandNames().size());
}

// The friendly subcommands and the name lookups, run in order against one simulator: what each
// prints and returns, then what the players do.
TEST_F(TesselTest, ChannelSubcommandsTakeNamesAndSeveralPlayers) {
    // A umId prefix that several clips share: the lookup must list them and refuse.
    const auto listing = JsonReplies({"clips"});
    std::map<char, std::vector<std::string>> byFirstDigit;
    for (const auto& part : listing) {
        for (const auto& clip : part.at("clips")) {
            const std::string umId = clip.at("umId");
            byFirstDigit[umId[0]].push_back(umId);
        }
    }
    std::string shared;
    for (const auto& [digit, umIds] : byFirstDigit) {
        if (umIds.size() >= 2) {
            shared = std::string(1, digit);
        }
    }
    ASSERT_FALSE(shared.empty());
    const std::string someUmId = byFirstDigit[shared[0]].front();

    const struct {
        std::vector<std::string> arguments;
        ExitCode code;
        std::string shown;  // in standard output, or standard error for a failure
    } cases[] = {
        {{"load", "1:0", "1:1", "clip 00012"}, ExitCode::Ok, "player:1:1  ok"},
        {{"load", "1:2", someUmId.substr(0, 12)}, ExitCode::Ok, "player:1:2  ok"},
        {{"load", "1:3", someUmId}, ExitCode::Ok, "player:1:3  ok"},
        {{"load", "2:0", "Playlist 1", "--on-air"}, ExitCode::Ok, "player:2:0  ok"},
        {{"load", "1:0", shared}, ExitCode::Usage, byFirstDigit[shared[0]][1]},
        {{"load", "1:0", "no such clip"}, ExitCode::Usage, "no clip or playlist is named"},
        {{"load", "1:0", "Playlist 1", "--clip"}, ExitCode::Usage, "no clip is named"},
        {{"chain", "1:0", "Clip 00007", "--in", "fields:0"}, ExitCode::Ok, "player:1:0  ok"},
        {{"chain", "1:0", "Playlist 1"}, ExitCode::Usage, "no clip is named"},
        {{"sync", "2:0", "2:1"}, ExitCode::Ok, "player:2:1  ok"},
        {{"boundaries", "1:1", "--in", "fields:25", "--out", "fields:250"},
         ExitCode::Ok,
         "player:1:1  ok"},
        {{"boundaries", "1:1", "--in", "25"}, ExitCode::Usage, "is not a boundary"},
        {{"live", "2:2=2:4", "2:3", "--feed", "recorder:2:5"}, ExitCode::Ok, "player:2:3  ok"},
        {{"live", "2:2"}, ExitCode::Usage, "no feed for 2:2"},
        {{"dial", "1:1", "1:2", "--velocity=-20", "--velocity", "50"},
         ExitCode::Ok,
         "player:1:2  ok"},
        {{"dial", "1:1", "--velocity", "fast"}, ExitCode::Usage, "is not a velocity"},
        {{"playlists", "--id", "playlist 2"}, ExitCode::Ok, "Playlist 2"},
        {{"call", "NoSuchCommand", "--template"}, ExitCode::Usage, "unknown command"},
        {{"watch", "PlayerStateChange"}, ExitCode::Usage, "unknown notification family or type"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.arguments.front() + " " + test.arguments.back());
        const auto result = Tessel(test.arguments);
        EXPECT_EQ(result.exitCode, Code(test.code)) << result.err;
        const std::string& text = test.code == ExitCode::Ok ? result.out : result.err;
        EXPECT_NE(text.find(test.shown), std::string::npos) << text;
    }
    EXPECT_EQ(PlayerState("player:2:0").at("loadedMaterialType"), 2);  // a playlist
    EXPECT_EQ(PlayerState("player:2:1").at("loadedMaterialType"), 2);  // synced to 2:0
    EXPECT_EQ(PlayerState("player:2:3").at("playMode"), 3);            // live
    EXPECT_EQ(PlayerState("player:1:2").at("playMode"), 4);            // dialing

    // Velocities streamed on standard input: whichever were replaced, the last one stands. The
    // player has a whole clip loaded, minutes at that speed, so it is still dialing when read.
    const auto dialed = Tessel({"dial", "1:3", "--velocity", "-"}, "10\n20\n\n30\n");
    EXPECT_EQ(dialed.exitCode, 0) << dialed.err;
    const auto state = PlayerState("player:1:3");
    EXPECT_EQ(state.at("infoOnAir").at("speedNumerator"), 30);
    EXPECT_EQ(state.at("infoOnAir").at("speedDenominator"), 100);
}

// The environment gives the endpoints when the options do not, and the options win over it; the
// generated completion completes subcommands, options, command and notification names.
TEST_F(TesselTest, EnvironmentVersionAndCompletion) {
    auto result = RunProcess({"/usr/bin/env", "TESSEL_COMMANDS=" + simulator.CommandEndpoint(),
                              TESSEL_BINARY, "ping"},
                             kPatience);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    result = RunProcess({"/usr/bin/env", "TESSEL_COMMANDS=tcp://nohost", TESSEL_BINARY, "-c",
                         simulator.CommandEndpoint(), "ping"},
                        kPatience);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    result = RunProcess({"/usr/bin/env", "TESSEL_SERVER_KEY=garbage", TESSEL_BINARY, "-c",
                         simulator.CommandEndpoint(), "ping"},
                        kPatience);
    EXPECT_EQ(result.exitCode, Code(ExitCode::Usage)) << result.err;
    result = RunProcess({TESSEL_BINARY, "--version"}, kPatience);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out.rfind("tessel ", 0), 0u) << result.out;

    const std::pair<std::string, std::string> completions[] = {
        {"tessel rec", "record"},
        {"tessel record st", "start stop"},
        {"tessel -c tcp://x:1 call PingC", "PingCommand"},
        {"tessel watch PlayerS", "PlayerStateChanged"},
        {"tessel load 1:0 --pl", "--playlist"},
        {"tessel boundaries 1:0 --bo", "--boundary-type"},
    };
    for (const auto& [typed, expected] : completions) {
        const std::string script = "source " TESSEL_COMPLETION
                                   "; COMP_WORDS=(" + typed + "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); "
                                   "_tessel; echo \"${COMPREPLY[*]}\"";
        result = RunProcess({"/bin/bash", "-c", script}, kPatience);
        EXPECT_EQ(result.out, expected + "\n") << typed << ": " << result.err;
    }
}

// A watch started just before a change prints it, every time, once it has said it is ready (on
// standard error, or through --ready-file).
TEST_F(TesselTest, WatchNeverMissesAChangeMadeOnceItIsReady) {
    Plexis::Tessel::Client::ConnectionOptions options;
    options.commandEndPoint = simulator.CommandEndpoint();
    Plexis::Tessel::Client::Connection connection(options);
    const std::string readyFile =
        ::testing::TempDir() + "tessel-ready-" + std::to_string(::getpid());
    for (int round = 0; round < 50; ++round) {
        SCOPED_TRACE(round);
        const bool byFile = round % 2 == 1;
        std::remove(readyFile.c_str());
        auto arguments = CommandLine({"watch", "--count", "1", "PlayerStateChanged"});
        if (byFile) {
            arguments.push_back("--ready-file");
            arguments.push_back(readyFile);
        }
        // Standard error joins standard output, where the ready line can be read as it comes.
        arguments.insert(arguments.begin(), {"/bin/sh", "-c", "exec \"$@\" 2>&1", "sh"});
        ChildProcess watch(arguments);
        if (byFile) {
            const auto deadline = std::chrono::steady_clock::now() + kPatience;
            while (!std::ifstream(readyFile) && std::chrono::steady_clock::now() < deadline) {
                ASSERT_TRUE(watch.Running()) << watch.Out();
                std::this_thread::sleep_for(5ms);
            }
        } else {
            ASSERT_TRUE(watch.ReadLineUntil(
                [](const std::string& line) { return line.rfind("tessel: ready:", 0) == 0; },
                kPatience))
                << watch.Out();
        }
        Commands::GoIdleCommandParams idle;
        idle.players = {Plexis::Data::Channels::Guid::PlayerOf(1, static_cast<unsigned>(round % 4))};
        ASSERT_EQ(connection.Send(idle).Wait(), Plexis::Tessel::Client::Outcome::Replied);
        ASSERT_EQ(watch.Wait(kPatience), 0) << watch.Out();
        EXPECT_NE(watch.Out().find("PlayerStateChanged"), std::string::npos) << watch.Out();
    }
    std::remove(readyFile.c_str());
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

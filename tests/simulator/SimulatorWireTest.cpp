// The simulator as a peer on the wire: long answers in parts, bad input, injected faults,
// restarts, its state file and encryption.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>

#include <zmq.hpp>

#include "support/SimulatorSession.h"
#include "support/ZmqPeers.h"

namespace Korvo::Testing {
namespace {

using Plexis::Data::Guid;
using ChannelId = Plexis::Data::Channels::Guid;
using Kind = Plexis::Tessel::Client::PendingCommandReply::ItemKind;

// A bare DEALER, to send what the library's clients never would.
class RawClient {
public:
    explicit RawClient(const std::string& endpoint) : socket(context, zmq::socket_type::dealer) {
        socket.set(zmq::sockopt::linger, 0);
        socket.set(zmq::sockopt::rcvtimeo, static_cast<int>(kPatience.count()));
        socket.connect(endpoint);
    }
    void Send(const Frames& frames) {
        for (std::size_t i = 0; i < frames.size(); ++i) {
            socket.send(zmq::buffer(frames[i]),
                        i + 1 < frames.size() ? zmq::send_flags::sndmore : zmq::send_flags::none);
        }
    }
    Frames Receive() {
        Frames frames;
        zmq::message_t part;
        do {
            if (!socket.recv(part)) {
                ADD_FAILURE() << "no reply";
                return frames;
            }
            frames.push_back(part.to_string());
        } while (part.more());
        return frames;
    }

private:
    zmq::context_t context;
    zmq::socket_t socket;
};

SimulatorOptions Small() {
    SimulatorOptions options;
    options.clips = 5;
    return options;
}

TEST(SimulatorWireTest, LongAnswersArriveInPartsAndReassembleCompletely) {
    SimulatorOptions options;
    options.clips = 20000;
    options.partSize = 500;
    options.playersPerServer = 16;
    SimulatorSession session(options);

    const auto answer =
        session.AskData("GetClipsCommand", NewParams<Commands::GetClipsCommandParams>());
    ASSERT_EQ(answer.headers.size(), 40u);
    std::set<std::string> ids;
    for (std::size_t i = 0; i < answer.replies.size(); ++i) {
        EXPECT_EQ(answer.headers[i], i + 1 < answer.headers.size() ? "[part]GetClipsCommandReply"
                                                                     : "GetClipsCommandReply");
        for (const auto& clip :
             dynamic_cast<const Commands::GetClipsCommandReply&>(*answer.replies[i]).clips) {
            ids.insert(clip.umId);
        }
    }
    EXPECT_EQ(ids.size(), 20000u);
    EXPECT_EQ(session.simulator->ClipCount(), 20000u);

    // Sixteen channel results do not fit one channel reply of twelve.
    auto play = NewParams<Commands::PlayCommandParams>();
    for (unsigned channel = 0; channel < 16; ++channel) {
        play.players.insert(ChannelId::PlayerOf(1, channel));
    }
    const auto channels = session.AskChannel("PlayCommand", play);
    ASSERT_EQ(channels.headers.size(), 2u);
    EXPECT_EQ(channels.headers[0], "[part]ChannelCommandReply");
    EXPECT_EQ(dynamic_cast<const Commands::ChannelCommandReply&>(*channels.replies[0]).count, 12);
    EXPECT_EQ(channels.Final<Commands::ChannelCommandReply>().count, 4);
}

TEST(SimulatorWireTest, BadCommandsAreAnsweredAndGarbageIsSurvived) {
    Simulator simulator(Small());
    RawClient raw(simulator.CommandEndpoint());

    raw.Send({TicketBytes(7), "NoSuchCommand", ""});
    auto reply = raw.Receive();
    ASSERT_EQ(reply.size(), 3u);
    EXPECT_EQ(reply[0], TicketBytes(7));
    EXPECT_EQ(reply[1], "UnknownCommand");
    Plexis::Tessel::Client::ChannelCommandReplyBuilder builder;
    Common::Serialization::PointerBuffer unknownBytes(
        reinterpret_cast<unsigned char*>(reply[2].data()), static_cast<unsigned>(reply[2].size()));
    const auto unknown = builder.BuildCommandReply(reply[1], unknownBytes);
    EXPECT_EQ(dynamic_cast<const Commands::UnknownCommandReply&>(*unknown).message,
              "Unknown command \"NoSuchCommand\".");

    raw.Send({TicketBytes(8), "PlayCommand", std::string("\x1c\xff\xff", 3)});
    reply = raw.Receive();
    ASSERT_EQ(reply.size(), 3u);
    EXPECT_EQ(reply[1], "FailureReply");
    Common::Serialization::PointerBuffer failureBytes(
        reinterpret_cast<unsigned char*>(reply[2].data()), static_cast<unsigned>(reply[2].size()));
    const auto failure = builder.BuildCommandReply(reply[1], failureBytes);
    EXPECT_NE(dynamic_cast<const Commands::FailureReply&>(*failure).message.find("PlayCommand"),
              std::string::npos);

    // A stream of garbage: random frame counts, sizes and bytes, under real and made-up names.
    std::mt19937 random(42);
    const std::vector<std::string> names = {"PlayCommand", "GetClipsCommand", "CreateClipsCommand",
                                            "UpdatePlaylistsCommand", "", "\xff\xfe"};
    for (int i = 0; i < 2000; ++i) {
        Frames frames(random() % 5 + 1);
        for (auto& frame : frames) {
            frame.resize(random() % 64);
            for (auto& byte : frame) {
                byte = static_cast<char>(random());
            }
        }
        if (frames.size() == 3) {
            frames[0] = TicketBytes(1000 + i);
            frames[1] = names[random() % names.size()];
        }
        raw.Send(frames);
    }
    const auto ping = Plexis::Tessel::Client::DataCommandParamsPayloadBuilder().BuildPayload(
        "PingCommand", NewParams<Commands::PingCommandParams>());
    raw.Send({TicketBytes(9), "PingCommand",
              std::string(reinterpret_cast<const char*>(ping->Pointer()), ping->Size())});
    for (;;) {  // the answers to the garbage come first, then the ping's
        reply = raw.Receive();
        ASSERT_EQ(reply.size(), 3u);
        if (reply[0] == TicketBytes(9)) {
            break;
        }
    }
    EXPECT_EQ(reply[1], "SuccessReply");
    EXPECT_GT(simulator.GetStatistics().malformedReceived, 0u);
}

TEST(SimulatorWireTest, InjectedFaultsDelayDropCorruptAndDuplicateReplies) {
    SimulatorSession session(Small());
    auto& client = *session.dataClient;
    auto ping = [&] { return client.Request("PingCommand", NewParams<Commands::PingCommandParams>()); };

    Plexis::Tessel::Simulator::Faults faults;
    faults.dropFraction = 1;
    session.simulator->SetFaults(faults);
    auto dropped = ping();
    EXPECT_EQ(dropped->Next(std::chrono::milliseconds(300)).kind, Kind::TimedOut);

    faults = {};
    faults.malformedFraction = 1;
    session.simulator->SetFaults(faults);
    auto malformed = ping();
    auto item = malformed->Next(kSessionPatience);
    ASSERT_EQ(item.kind, Kind::Final);
    EXPECT_THROW(malformed->BuildReply(item), std::invalid_argument);

    faults = {};
    faults.duplicateFraction = 1;
    faults.replyDelay = std::chrono::milliseconds(50);
    faults.replyJitter = std::chrono::milliseconds(50);
    session.simulator->SetFaults(faults);
    auto first = ping();
    auto second = ping();
    EXPECT_EQ(first->Next(kSessionPatience).kind, Kind::Final);
    EXPECT_EQ(second->Next(kSessionPatience).kind, Kind::Final);
    // The malformed reply, then each final twice.
    EXPECT_TRUE(Eventually([&] { return session.simulator->GetStatistics().repliesSent >= 5u; }));

    faults = {};
    faults.silent = true;
    session.simulator->SetFaults(faults);
    const auto before = session.simulator->GetStatistics().commandsReceived;
    auto ignored = ping();
    EXPECT_EQ(ignored->Next(std::chrono::milliseconds(300)).kind, Kind::TimedOut);
    EXPECT_GT(session.simulator->GetStatistics().commandsReceived, before);

    session.simulator->SetFaults({});
    EXPECT_EQ(session.AskData("PingCommand", NewParams<Commands::PingCommandParams>()).headers,
              std::vector<std::string>{"SuccessReply"});
}

TEST(SimulatorWireTest, ARestartedServerIsReachedAgainOnTheSamePort) {
    SimulatorSession session(Small());
    const std::string endpoint = session.simulator->CommandEndpoint();
    session.simulator->Restart();
    EXPECT_EQ(session.simulator->CommandEndpoint(), endpoint);
    EXPECT_EQ(session.simulator->GetStatistics().restarts, 1u);
    // The client reconnects by itself; until then a command may be dropped, so ask again.
    bool answered = false;
    const auto deadline = std::chrono::steady_clock::now() + kSessionPatience;
    while (!answered && std::chrono::steady_clock::now() < deadline) {
        auto pending = session.dataClient->Request("PingCommand",
                                                   NewParams<Commands::PingCommandParams>());
        answered = pending && pending->Next(std::chrono::milliseconds(500)).kind == Kind::Final;
    }
    EXPECT_TRUE(answered);
}

TEST(SimulatorWireTest, TheStateFileKeepsClipsPlaylistsAndGroupsAcrossRuns) {
    const auto folder = std::filesystem::temp_directory_path() /
                        ("tessel-sim-state-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    const auto file = (folder / "state").string();
    SimulatorOptions options = Small();
    options.stateFile = file;

    std::string madeId;
    {
        SimulatorSession session(options);
        auto create = NewParams<Commands::CreateClipsCommandParams>();
        create.clips.resize(1);
        create.clips[0].clip.name = Plexis::Data::Clips::AsciiOrUtf16String::Ascii("Kept");
        madeId = session.AskData("CreateClipsCommand", create)
                     .Final<Commands::ClipCommandReply>()
                     .results.at(0)
                     .clip.umId;
    }
    options.seed = 99;  // a different seed: what is read must come from the file
    {
        SimulatorSession session(options);
        const auto clips = session.AskData("GetClipsCommand",
                                           NewParams<Commands::GetClipsCommandParams>());
        const auto& list = clips.Final<Commands::GetClipsCommandReply>().clips;
        EXPECT_EQ(list.size(), 6u);
        EXPECT_TRUE(std::any_of(list.begin(), list.end(), [&](const auto& clip) {
            return clip.umId == madeId && clip.name.data == "Kept";
        }));
        const auto groups = session.AskData("GetAnglesGroupsCommand",
                                            NewParams<Commands::GetAnglesGroupsCommandParams>());
        EXPECT_EQ(groups.Final<Commands::GetAnglesGroupsCommandReply>().anglesGroups.size(), 3u);
    }
    EXPECT_FALSE(std::filesystem::exists(file + ".tmp"));

    std::ofstream(file, std::ios::binary | std::ios::trunc) << "tessel-sim state 1\n\x05";
    EXPECT_THROW(Simulator{options}, std::runtime_error);
    std::filesystem::remove_all(folder);
}

TEST(SimulatorWireTest, AnEncryptedServerAnswersAClientThatKnowsItsKey) {
    SimulatorOptions options = Small();
    options.curveSecretKey = Plexis::Tessel::Simulator::GenerateCurveKeyPair().second;
    SimulatorSession session(options);
    EXPECT_NE(session.simulator->CommandEndpoint().find(";curve=" + session.simulator->PublicKey()),
              std::string::npos);
    EXPECT_EQ(session.AskData("PingCommand", NewParams<Commands::PingCommandParams>()).headers,
              std::vector<std::string>{"SuccessReply"});
    EXPECT_TRUE(session.simulator->AddServer() > 0);
    session.inbox.WaitFor<Events::ServerAddedEventArgs>();
}

}  // namespace
}  // namespace Korvo::Testing

// The simulator as a peer on the wire: long answers in parts, bad input, injected faults,
// restarts, its state file and encryption.

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <thread>

#include <zmq.hpp>

#include "support/SimulatorSession.h"
#include "support/ZmqPeers.h"

namespace Korvo::Testing {
namespace {

using Plexis::Data::Guid;
using ChannelId = Plexis::Data::Channels::Guid;
using Kind = Plexis::Tessel::Client::PendingCommandReply::ItemKind;


SimulatorOptions Small() {
    SimulatorOptions options;
    options.clips = 5;
    return options;
}

// What constructing a simulator with `options` throws; empty when it starts.
std::string StartFailure(const SimulatorOptions& options) {
    try {
        Simulator simulator(options);
    } catch (const std::exception& failure) {
        return failure.what();
    }
    return {};
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
    DealerPeer raw(simulator.CommandEndpoint());

    // The reply to `frames`, decoded; the test fails unless it comes for their ticket as `header`.
    const auto answer = [&raw](const Frames& frames, const std::string& header) {
        raw.Send(frames);
        auto reply = raw.Receive();
        EXPECT_EQ(reply.size(), 3u);
        EXPECT_EQ(reply.at(0), frames[0]);
        EXPECT_EQ(reply.at(1), header);
        const Common::Serialization::PointerBuffer bytes(
            reinterpret_cast<unsigned char*>(reply.at(2).data()),
            static_cast<unsigned>(reply.at(2).size()));
        return Plexis::Tessel::Client::ChannelCommandReplyBuilder().BuildCommandReply(header, bytes);
    };
    const auto unknown = answer({TicketBytes(7), "NoSuchCommand", ""}, "UnknownCommand");
    EXPECT_EQ(dynamic_cast<const Commands::UnknownCommandReply&>(*unknown).message,
              "Unknown command \"NoSuchCommand\".");
    const auto failure =
        answer({TicketBytes(8), "PlayCommand", std::string("\x1c\xff\xff", 3)}, "FailureReply");
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
    raw.Send({TicketBytes(9), "PingCommand",
              Encoded("PingCommand", NewParams<Commands::PingCommandParams>())});
    Frames reply;
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
    auto item = malformed->Next(kPatience);
    ASSERT_EQ(item.kind, Kind::Final);
    EXPECT_THROW(malformed->BuildReply(item), std::invalid_argument);

    faults = {};
    faults.duplicateFraction = 1;
    faults.replyDelay = std::chrono::milliseconds(50);
    faults.replyJitter = std::chrono::milliseconds(50);
    session.simulator->SetFaults(faults);
    auto first = ping();
    auto second = ping();
    EXPECT_EQ(first->Next(kPatience).kind, Kind::Final);
    EXPECT_EQ(second->Next(kPatience).kind, Kind::Final);
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

TEST(SimulatorWireTest, RepliesBeyondTheirMemoryBoundsAreDroppedCountedAndTheRestDelivered) {
    struct Case {
        const char* name;
        std::function<void(SimulatorOptions&)> bound;
    };
    const std::vector<Case> cases = {
        {"one peer's queue", [](SimulatorOptions& o) { o.peerQueueBytes = 2 << 20; }},
        {"all peers' queues", [](SimulatorOptions& o) { o.sendQueueBytes = 2 << 20; }},
        {"delayed replies",
         [](SimulatorOptions& o) {
             o.delayedReplyBytes = 2 << 20;
             o.faults.replyDelay = std::chrono::milliseconds(300);
         }},
    };
    constexpr int kListings = 40;
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        SimulatorOptions options = Small();
        test.bound(options);
        Simulator simulator(options);
        DealerPeer raw(simulator.CommandEndpoint(), /*slow=*/true);
        // Four clips with long names make every listing about a mebibyte.
        auto create = NewParams<Commands::CreateClipsCommandParams>();
        create.clips.resize(4);
        for (auto& item : create.clips) {
            item.clip.name = Plexis::Data::Clips::AsciiOrUtf16String::Ascii(std::string(256 << 10, 'n'));
        }
        raw.Send({TicketBytes(1), "CreateClipsCommand", Encoded("CreateClipsCommand", create)});
        const std::string listing =
            Encoded("GetClipsCommand", NewParams<Commands::GetClipsCommandParams>());
        for (int i = 0; i < kListings; ++i) {
            raw.Send({TicketBytes(100 + i), "GetClipsCommand", listing});
        }
        EXPECT_TRUE(Eventually([&] {
            const auto stats = simulator.GetStatistics();
            return stats.commandsReceived == kListings + 1 && stats.repliesShed > 0;
        }));
        // Everything not dropped arrives, in order, then the answer to a ping.
        raw.Send({TicketBytes(9), "PingCommand",
                  Encoded("PingCommand", NewParams<Commands::PingCommandParams>())});
        std::uint64_t received = 0;
        for (Frames reply = raw.Receive(); reply.size() == 3; reply = raw.Receive()) {
            if (reply[0] == TicketBytes(9)) {
                EXPECT_EQ(reply[1], "SuccessReply");
                break;
            }
            ++received;
        }
        EXPECT_EQ(received + simulator.GetStatistics().repliesShed, kListings + 1u);
    }
}

TEST(SimulatorWireTest, TheTopicsOfDepartedSubscribersAreForgotten) {
    Simulator simulator(Small());
    const std::string topic = "PlayerEvents/replay-1";
    {
        zmq::context_t context;
        std::vector<zmq::socket_t> subscribers;
        for (const std::string marker : {"zz1", "zz2"}) {
            subscribers.emplace_back(context, zmq::socket_type::sub);
            subscribers.back().set(zmq::sockopt::linger, 0);
            subscribers.back().set(zmq::sockopt::subscribe, topic);
            subscribers.back().set(zmq::sockopt::subscribe, marker);  // sent after the topic
            subscribers.back().connect(simulator.NotificationEndpoint());
            ASSERT_TRUE(simulator.WaitForSubscriber(marker, kPatience));
        }
    }
    EXPECT_TRUE(Eventually([&] {
        return !simulator.WaitForSubscriber(topic, std::chrono::milliseconds(0)) &&
               !simulator.WaitForSubscriber("zz", std::chrono::milliseconds(0));
    }));
}

TEST(SimulatorWireTest, ABusyPortFailsTheStartAtOnceAndARestartKeepsTryingUntilItIsFree) {
    zmq::context_t context;
    zmq::socket_t holder(context, zmq::socket_type::router);
    holder.bind("tcp://127.0.0.1:*");
    SimulatorOptions options = Small();
    options.commandAddress = holder.get(zmq::sockopt::last_endpoint);
    const auto start = std::chrono::steady_clock::now();
    const std::string failure = StartFailure(options);
    EXPECT_NE(failure.find("cannot bind " + options.commandAddress), std::string::npos) << failure;
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));

    // A restart whose port is taken meanwhile reports it and binds again once it is free.
    Simulator simulator(Small());
    const int port = PortOf(simulator.CommandEndpoint());
    int taker = -1;
    std::string restartFailure;
    for (int attempt = 0; attempt < 5 && restartFailure.empty(); ++attempt) {
        std::atomic<bool> stop{false};
        std::thread grab([&] {  // takes the port the moment the simulator lets it go
            sockaddr_in address{};
            address.sin_family = AF_INET;
            address.sin_port = htons(static_cast<std::uint16_t>(port));
            address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            while (!stop && taker < 0) {
                const int candidate = ::socket(AF_INET, SOCK_STREAM, 0);
                if (::bind(candidate, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
                    ::listen(candidate, 1) == 0) {
                    taker = candidate;
                } else {
                    ::close(candidate);
                }
            }
        });
        try {
            simulator.Restart();
        } catch (const std::runtime_error& error) {
            restartFailure = error.what();
        }
        stop = true;
        grab.join();
    }
    ASSERT_GE(taker, 0);
    EXPECT_NE(restartFailure.find(":" + std::to_string(port)), std::string::npos) << restartFailure;
    ::close(taker);
    EXPECT_EQ(PortOf(simulator.CommandEndpoint()), port);
    DealerPeer raw(simulator.CommandEndpoint());
    raw.Send({TicketBytes(3), "PingCommand",
              Encoded("PingCommand", NewParams<Commands::PingCommandParams>())});
    const auto reply = raw.Receive();
    ASSERT_EQ(reply.size(), 3u);
    EXPECT_EQ(reply[1], "SuccessReply");
    EXPECT_GE(simulator.GetStatistics().restarts, 1u);
}

TEST(SimulatorWireTest, OptionsOutOfRangeAreRefusedBeforeAnythingStarts) {
    const std::vector<std::pair<const char*, std::function<void(SimulatorOptions&)>>> cases = {
        {"negative servers", [](SimulatorOptions& o) { o.servers = -1; }},
        {"too many clips", [](SimulatorOptions& o) { o.clips = Plexis::Tessel::Simulator::kMaxCount + 1; }},
        {"too many channels",
         [](SimulatorOptions& o) {
             o.servers = 1000;
             o.playersPerServer = 1000;
         }},
        {"no part size", [](SimulatorOptions& o) { o.partSize = 0; }},
        {"NaN fraction", [](SimulatorOptions& o) { o.faults.dropFraction = std::nan(""); }},
        {"fraction above 1", [](SimulatorOptions& o) { o.faults.duplicateFraction = 1.5; }},
        {"negative delay", [](SimulatorOptions& o) { o.faults.replyDelay = std::chrono::milliseconds(-1); }},
        {"huge jitter",
         [](SimulatorOptions& o) { o.faults.replyJitter = std::chrono::milliseconds(9'300'000'000'000'000); }},
    };
    for (const auto& [name, change] : cases) {
        SimulatorOptions options = Small();
        change(options);
        EXPECT_THROW(Simulator{options}, std::invalid_argument) << name;
    }
    Simulator simulator(Small());
    Plexis::Tessel::Simulator::Faults faults;
    faults.malformedFraction = std::nan("");
    EXPECT_THROW(simulator.SetFaults(faults), std::invalid_argument);
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
    const std::uint64_t firstSeed = options.seed;
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
    options.seed = firstSeed;  // the generator that made the saved clip's identifier
    {
        SimulatorSession session(options);
        auto create = NewParams<Commands::CreateClipsCommandParams>();
        create.clips.resize(1);
        const auto made = session.AskData("CreateClipsCommand", create)
                              .Final<Commands::ClipCommandReply>()
                              .results.at(0);
        EXPECT_EQ(made.status.code, 0);
        EXPECT_NE(made.clip.umId, madeId);
        EXPECT_EQ(session.simulator->ClipCount(), 7u);
    }

    // Damaged, foreign or oversized files stop the start with a message saying why.
    std::string saved;
    {
        std::ifstream in(file, std::ios::binary);
        saved.assign(std::istreambuf_iterator<char>(in), {});
    }
    const std::size_t header = std::string("tessel-sim state 1\n").size();
    auto length = [&](std::size_t at) {
        return static_cast<std::size_t>(static_cast<unsigned char>(saved[at])) |
               static_cast<std::size_t>(static_cast<unsigned char>(saved[at + 1])) << 8 |
               static_cast<std::size_t>(static_cast<unsigned char>(saved[at + 2])) << 16;
    };
    // The first clip listing twice, its count raised by one: every clip of it appears twice.
    std::string twice = saved;
    const std::string firstListing = saved.substr(header + 4, 4 + length(header + 4));
    twice[header] = static_cast<char>(twice[header] + 1);
    twice.insert(header + 4, firstListing);
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"tessel-sim state 1\n\x05", "truncated"},
        {"something else entirely", "not a tessel-sim state file"},
        {saved + "x", "unexpected bytes"},
        {twice, "two clips"},
        {saved + std::string(saved.size() + 2048, 'x'), "allowed"},
    };
    options.stateFileLimitBytes = 2 * saved.size() + 1024;
    for (const auto& [content, expected] : cases) {
        std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
        const std::string failure = StartFailure(options);
        EXPECT_NE(failure.find(expected), std::string::npos) << failure;
    }
    options.stateFile = folder.string();
    EXPECT_NE(StartFailure(options).find("not a regular file"), std::string::npos);
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

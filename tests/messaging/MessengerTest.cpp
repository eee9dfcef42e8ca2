#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>
#include <zmq.h>

#include <filesystem>

#include <atomic>
#include <future>
#include <thread>

#include <Korvo/Common/Messaging/ObjectShutDownException.h>
#include <Korvo/Common/Messaging/SharedContext.h>
#include <Korvo/Common/Messaging/TransportException.h>

#include "messaging/MessagingFixture.h"

namespace Korvo::Testing {
namespace {

using Common::Messaging::ObjectShutDownException;
using Common::Messaging::TransportException;
using std::chrono::milliseconds;
using MessengerTest = MessagingFixture;

// The next reply a bare messenger receives, polling Receive as the command client does.
std::unique_ptr<Plexis::Tessel::Client::BaseMessage> NextReply(Messenger& messenger) {
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (std::chrono::steady_clock::now() < deadline) {
        if (auto message = messenger.Receive()) {
            return message;
        }
    }
    ADD_FAILURE() << "no reply arrived";
    return nullptr;
}

TEST_F(MessengerTest, CommandFramesArriveAsSentAndEachRequestEndsOnceWithItsOwnReplies) {
    RouterPeer server;
    auto client = ClientOver(MessengerTo(EndPoint(server.Address())));
    auto play = client->Request("PlayCommand", TextParams("speed=1"));
    auto stop = client->Request("StopCommand", TextParams(""));
    ASSERT_TRUE(play && stop);

    const auto first = server.Receive();
    const auto second = server.Receive();
    ASSERT_TRUE(first && second);
    const std::string& identity = (*first)[0];
    EXPECT_EQ(*first, (Frames{identity, std::string(4, '\0'), "PlayCommand", "speed=1"}));
    EXPECT_EQ(*second, (Frames{identity, std::string("\1\0\0\0", 4), "StopCommand", ""}));

    // Out of order, with parts, stray tickets and replies after a final one between them.
    server.Reply(identity, 1, "Done", "stopped");
    server.Reply(identity, 1, "Done", "duplicate");
    server.Reply(identity, 1, "[part]Done", "part after the final");
    server.Reply(identity, 0, "[part]State", "one");
    server.Reply(identity, 77, "Done", "nobody asked");
    server.Reply(identity, -5, "[part]State", "nobody asked either");
    server.Reply(identity, 0, "State", "two");

    auto stopped = NextOf(*stop);
    EXPECT_EQ(stopped.kind, Kind::Final);
    EXPECT_EQ(TextOf(*stop, stopped), "stopped");
    auto part = NextOf(*play);
    ASSERT_EQ(part.kind, Kind::Partial);
    EXPECT_EQ(part.message->GetHeader(), "[part]State");
    EXPECT_EQ(TextOf(*play, part), "one");
    auto last = NextOf(*play);
    ASSERT_EQ(last.kind, Kind::Final);
    EXPECT_EQ(TextOf(*play, last), "two");
    EXPECT_THROW(stop->Next(milliseconds(0)), std::logic_error);  // nothing after the final
    // The stray, duplicate and late replies were handled before "two", which came after them.
    EXPECT_EQ(client->GetDroppedReplies().unanswerable, 4u);
}

TEST_F(MessengerTest, TicketsTravelAsSignedLittleEndianBytesAndAReplyEndsTheWaitAtOnce) {
    RouterPeer server;
    TransportOptions patient = Options();
    patient.receiveWait = std::chrono::minutes(10);
    auto messenger = MessengerTo(EndPoint(server.Address()), patient);
    std::string body = "body";
    messenger->Send(-2, "Ping", Bytes(body));
    messenger->Send(0x01020304, "Ping", Bytes(body));
    const auto negative = server.Receive();
    const auto large = server.Receive();
    ASSERT_TRUE(negative && large);
    EXPECT_EQ((*negative)[1], std::string("\xFE\xFF\xFF\xFF", 4));
    EXPECT_EQ((*large)[1], std::string("\x04\x03\x02\x01", 4));

    auto waiting = std::async(std::launch::async, [&] { return messenger->Receive(); });
    server.Send({(*negative)[0], std::string("\xFE\xFF\xFF\xFF", 4), "Pong", "back"});
    if (waiting.wait_for(kPatience) != std::future_status::ready) {
        messenger->ShutDown();
        FAIL() << "the reply did not end the wait";
    }
    auto reply = waiting.get();
    ASSERT_NE(reply, nullptr);
    EXPECT_TRUE(reply->IsValid());
    EXPECT_EQ(reply->GetOrigin().GetTicket(), -2);
    EXPECT_EQ(reply->GetHeader(), "Pong");
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(reply->Data()), reply->DataSize()), "back");
    EXPECT_EQ(reply->GetPayload().Size(), 4u);
}

TEST_F(MessengerTest, EightThreadsSendWhileRepliesStreamBack) {
    constexpr int kThreads = 8;
    constexpr int kRequests = 250;
    RouterPeer server;
    std::atomic<bool> serving{true};
    std::thread echo([&] {
        while (serving) {
            const auto command = server.Receive(milliseconds(100));
            if (!command) {
                continue;
            }
            const int ticket = TicketOf((*command)[1]);
            if (ticket % 3 == 0) {
                server.Reply((*command)[0], ticket, "[part]Echo", (*command)[3]);
            }
            server.Reply((*command)[0], ticket, "Echo", (*command)[3]);
        }
    });

    auto client = ClientOver(MessengerTo(EndPoint(server.Address())));
    std::atomic<int> wrong{0};
    std::vector<std::thread> senders;
    for (int t = 0; t < kThreads; ++t) {
        senders.emplace_back([&, t] {
            for (int i = 0; i < kRequests; ++i) {
                const std::string text = std::to_string(t) + ":" + std::to_string(i);
                auto pending = client->Request("Echo", TextParams(text));
                while (pending && pending->IsPending()) {
                    auto item = NextOf(*pending);
                    if (!item.message) {  // cancelled or timed out
                        ++wrong;
                        break;
                    }
                    wrong += TextOf(*pending, item) == text ? 0 : 1;
                }
                wrong += pending ? 0 : 1;
            }
        });
    }
    for (auto& sender : senders) {
        sender.join();
    }
    serving = false;
    echo.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(MessengerTest, ShutDownInterruptsABlockedReceiveAndABlockedSend) {
    TransportOptions patient = Options();
    patient.receiveWait = std::chrono::minutes(10);
    patient.sendWait = std::chrono::minutes(10);
    RouterPeer server;
    StateLog states;
    auto receiving = MessengerTo(EndPoint(server.Address()), patient, &states);
    std::string nobody;
    {
        RouterPeer gone;
        nobody = gone.Address();
    }
    auto sending = MessengerTo(EndPoint(nobody), patient);
    std::string body = "go live";

    auto blockedReceive = std::async(std::launch::async, [&] { return receiving->Receive(); });
    auto blockedSend =
        std::async(std::launch::async, [&] { sending->Send(1, "Live", Bytes(body)); });
    receiving->ShutDown();
    sending->ShutDown();
    ASSERT_EQ(blockedReceive.wait_for(kPatience), std::future_status::ready);
    ASSERT_EQ(blockedSend.wait_for(kPatience), std::future_status::ready);
    EXPECT_THROW(blockedReceive.get(), ObjectShutDownException);
    EXPECT_THROW(blockedSend.get(), ObjectShutDownException);

    for (Messenger* messenger : {receiving.get(), sending.get()}) {
        EXPECT_TRUE(messenger->IsShutDown());
        EXPECT_EQ(messenger->GetConnectionState(), ConnectionState::ShutDown);
        EXPECT_THROW(messenger->Send(2, "Live", Bytes(body)), ObjectShutDownException);
        EXPECT_THROW(messenger->Receive(), ObjectShutDownException);
        messenger->ShutDown();  // a second time: nothing happens
    }
    EXPECT_TRUE(states.WaitFor(ConnectionState::ShutDown));
}

TEST_F(MessengerTest, MalformedRepliesAreDroppedAndLogged) {
    RouterPeer server;
    auto client = ClientOver(MessengerTo(EndPoint(server.Address())));
    auto pending = client->Request("Ping", TextParams("x"));
    const auto command = server.Receive();
    ASSERT_TRUE(command);
    const std::string& identity = (*command)[0];
    server.Send({identity, std::string(3, '\0'), "Pong", "short ticket"});
    server.Send({identity, TicketBytes(0), "Pong"});
    server.Send({identity, TicketBytes(0), "Pong", "x", "extra"});
    server.Reply(identity, 0, "Pong", "well formed");

    auto reply = NextOf(*pending);
    ASSERT_EQ(reply.kind, Kind::Final);
    EXPECT_EQ(TextOf(*pending, reply), "well formed");
    EXPECT_EQ(Logged("Receive: dropped a malformed reply"), 3);
}

TEST_F(MessengerTest, CurveWithTheServersKeyTalksAndWithAnotherKeyNothingGetsThrough) {
    char serverPublic[41], serverSecret[41], otherPublic[41], otherSecret[41];
    ASSERT_EQ(zmq_curve_keypair(serverPublic, serverSecret), 0);
    ASSERT_EQ(zmq_curve_keypair(otherPublic, otherSecret), 0);
    RouterPeer server("tcp://127.0.0.1:*", serverSecret);

    auto client = ClientOver(MessengerTo(EndPoint(server.Address(), serverPublic)));
    auto pending = client->Request("Ping", TextParams("secret"));
    auto command = server.Receive();
    ASSERT_TRUE(command);
    EXPECT_EQ((*command)[3], "secret");
    server.Reply((*command)[0], 0, "Pong", "secret");
    EXPECT_EQ(TextOf(*pending, NextOf(*pending)), "secret");

    TransportOptions impatient = Options();
    impatient.sendWait = milliseconds(500);
    auto impostor = MessengerTo(EndPoint(server.Address(), otherPublic), impatient);
    std::string body = "forged";
    EXPECT_FALSE(impostor->TrySend(7, "Ping", Bytes(body)));
    EXPECT_EQ(Logged("Send: command Ping (ticket 7) not sent: no server connected"), 1);
    EXPECT_NE(impostor->GetConnectionState(), ConnectionState::Connected);

    auto again = client->Request("Ping", TextParams("again"));
    command = server.Receive();
    ASSERT_TRUE(command);
    EXPECT_EQ((*command)[3], "again");
}

TEST_F(MessengerTest, UnansweredHeartbeatsShowAnUnpluggedServerAsDown) {
    RouterPeer server;
    TcpRelay cable(PortOf(server.Address()));
    TransportOptions options = Options();
    options.heartbeatInterval = milliseconds(100);
    options.heartbeatTimeout = milliseconds(500);
    StateLog states;
    auto messenger =
        MessengerTo(EndPoint("tcp://127.0.0.1:" + std::to_string(cable.Port())), options, &states);
    ASSERT_TRUE(states.WaitFor(ConnectionState::Connected));

    cable.Unplug();
    const auto unplugged = std::chrono::steady_clock::now();
    ASSERT_TRUE(states.WaitFor(ConnectionState::Reconnecting));
    // TCP on its own would not notice a silent peer at all; the heartbeats do, within a few
    // time-outs even on a loaded machine.
    EXPECT_LT(std::chrono::steady_clock::now() - unplugged, std::chrono::seconds(10));
    EXPECT_NE(messenger->GetConnectionState(), ConnectionState::Connected);
}

TEST_F(MessengerTest, AnOversizedReplyDropsTheLinkWhichIsThenRecreated) {
    RouterPeer server;
    TransportOptions options = Options();
    options.maxMessageSize = 1024;
    StateLog states;
    auto client = ClientOver(MessengerTo(EndPoint(server.Address()), options, &states));
    auto big = client->Request("List", TextParams("big"));
    auto command = server.Receive();
    ASSERT_TRUE(command);
    server.Reply((*command)[0], 0, "List", std::string(4096, 'x'));

    // ZeroMQ drops the link and, for this kind of fault, never retries on its own.
    ASSERT_TRUE(states.WaitFor(ConnectionState::Disconnected));
    ASSERT_TRUE(states.WaitFor(ConnectionState::Connected, 2));
    auto small = client->Request("List", TextParams("small"));
    command = server.Receive();
    ASSERT_TRUE(command);
    EXPECT_EQ((*command)[3], "small");
    server.Reply((*command)[0], small->GetRequestId(), "List", "small");
    EXPECT_EQ(TextOf(*small, NextOf(*small)), "small");
    EXPECT_EQ(big->Next(milliseconds(0)).kind, Kind::LinkLost);
}

TEST_F(MessengerTest, InprocReachesAPeerInTheSharedContext) {
    const std::shared_ptr<void> context = Common::Messaging::SharedContext();
    void* router = zmq_socket(context.get(), ZMQ_ROUTER);
    const int patience = static_cast<int>(kPatience.count());
    zmq_setsockopt(router, ZMQ_RCVTIMEO, &patience, sizeof patience);
    ASSERT_EQ(zmq_bind(router, "inproc://korvo-test-commands"), 0);
    {
        auto messenger = MessengerTo(EndPoint("inproc://korvo-test-commands"));
        EXPECT_EQ(messenger->GetConnectionState(), ConnectionState::Connected);
        std::string body = "here";
        messenger->Send(5, "Ping", Bytes(body));

        zmq::socket_ref server(zmq::from_handle, router);
        Frames command;
        zmq::message_t part;
        do {
            ASSERT_TRUE(server.recv(part));
            command.push_back(part.to_string());
        } while (part.more());
        ASSERT_EQ(command.size(), 4u);
        EXPECT_EQ(TicketOf(command[1]), 5);
        server.send(zmq::buffer(command[0]), zmq::send_flags::sndmore);
        server.send(zmq::buffer(command[1]), zmq::send_flags::sndmore);
        server.send(zmq::str_buffer("Pong"), zmq::send_flags::sndmore);
        server.send(zmq::buffer(command[3]), zmq::send_flags::none);
        auto reply = NextReply(*messenger);
        ASSERT_NE(reply, nullptr);
        EXPECT_EQ(reply->GetOrigin().GetTicket(), 5);
    }
    zmq_close(router);
}

// Whether this machine can listen on the IPv6 loopback address.
bool HasIpv6Loopback() {
    const int probe = ::socket(AF_INET6, SOCK_STREAM, 0);
    sockaddr_in6 local{};
    local.sin6_family = AF_INET6;
    local.sin6_addr = in6addr_loopback;
    const bool bound =
        probe >= 0 && ::bind(probe, reinterpret_cast<sockaddr*>(&local), sizeof local) == 0;
    if (probe >= 0) {
        ::close(probe);
    }
    return bound;
}

TEST_F(MessengerTest, AnIpv6LoopbackServerIsReached) {
    if (!HasIpv6Loopback()) {
        GTEST_SKIP() << "no IPv6 loopback on this machine";
    }
    RouterPeer server("tcp://[::1]:*");
    ASSERT_EQ(server.Address().rfind("tcp://[::1]:", 0), 0u) << server.Address();
    auto client = ClientOver(MessengerTo(EndPoint(server.Address())));
    auto pending = client->Request("Ping", TextParams("over IPv6"));
    const auto command = server.Receive();
    ASSERT_TRUE(command);
    EXPECT_EQ((*command)[3], "over IPv6");
    server.Reply((*command)[0], pending->GetRequestId(), "Pong", "back");
    EXPECT_EQ(TextOf(*pending, NextOf(*pending)), "back");
}

TEST_F(MessengerTest, TooFewFileDescriptorsFailConstructionWithAnExceptionSayingSo) {
    int highest = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        highest = std::max(highest, std::stoi(entry.path().filename().string()));
    }
    // Fill the gaps below the highest descriptor, then allow two more.
    std::vector<int> fillers;
    for (int fd = ::dup(2); fd >= 0; fd = ::dup(2)) {
        if (fd >= highest) {
            ::close(fd);
            break;
        }
        fillers.push_back(fd);
    }
    rlimit saved{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &saved), 0);
    rlimit tight = saved;
    tight.rlim_cur = static_cast<rlim_t>(highest + 3);
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &tight), 0);
    std::string message;
    try {
        Messenger messenger(EndPoint("tcp://127.0.0.1:5555"), Options());
    } catch (const TransportException& error) {
        message = error.what();
    }
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &saved), 0);
    for (const int fd : fillers) {
        ::close(fd);
    }
    EXPECT_NE(message.find("too few file descriptors"), std::string::npos) << message;
}

}  // namespace
}  // namespace Korvo::Testing

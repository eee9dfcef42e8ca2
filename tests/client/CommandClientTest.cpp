#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include <Korvo/Common/Messaging/ObjectShutDownException.h>
#include <Korvo/Common/Messaging/TransportException.h>

#include "client/ClientFixture.h"

namespace Korvo::Testing {
namespace {

using Common::Messaging::ObjectShutDownException;
using Common::Messaging::TransportException;

using CommandClientTest = ClientFixture;

TEST_F(CommandClientTest, TicketsCountFromZeroAndFailedBuildsUseNone) {
    auto first = Send("a");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->GetRequestId(), 0);

    EXPECT_EQ(Send("x", "NoPayload"), nullptr);
    EXPECT_TRUE(log->Has(ILogger::Error, "Request: failed to build command payload."));
    try {
        Send("x", "UnknownCommandName");
        ADD_FAILURE() << "the builder's exception must reach the caller";
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(), "Unknown command type.");
    }

    auto second = Send("b");
    auto third = Send("c");
    ASSERT_TRUE(second && third);
    EXPECT_EQ(second->GetRequestId(), 1);
    EXPECT_EQ(third->GetRequestId(), 2);

    ASSERT_TRUE(server->WaitForSent(3));
    const auto sent = server->Sent();
    EXPECT_EQ(sent[0].ticket, 0);
    EXPECT_EQ(sent[0].name, "Echo");
    EXPECT_EQ(sent[0].payload, "a");
    EXPECT_EQ(sent[2].ticket, 2);
    EXPECT_EQ(sent[2].payload, "c");
    EXPECT_EQ(log->Records().front().text, "Started.");
}

TEST_F(CommandClientTest, PartsThenFinalReachTheHandleInOrder) {
    auto pending = Send("list");
    ASSERT_NE(pending, nullptr);
    server->Reply(0, "[part]ClipList", "one");
    server->Reply(0, "[part]ClipList", "two");
    server->Reply(0, "ClipList", "three");

    auto part = NextOf(*pending);
    EXPECT_EQ(part.kind, Kind::Partial);
    EXPECT_TRUE(pending->IsPending());
    auto reply = pending->BuildReply(part);
    EXPECT_EQ(static_cast<TextReply&>(*reply).header, "[part]ClipList");
    EXPECT_EQ(static_cast<TextReply&>(*reply).text, "one");

    EXPECT_EQ(NextOf(*pending).kind, Kind::Partial);
    auto last = NextOf(*pending);
    ASSERT_EQ(last.kind, Kind::Final);
    EXPECT_FALSE(pending->IsPending());
    EXPECT_EQ(static_cast<TextReply&>(*pending->BuildReply(last)).text, "three");
    EXPECT_THROW(pending->Next(), std::logic_error);
}

TEST_F(CommandClientTest, LateUnknownAndInvalidMessagesAreDropped) {
    auto first = Send("first");
    server->Reply(0, "Done", "answer");
    ASSERT_EQ(NextOf(*first).kind, Kind::Final);

    auto second = Send("second");
    server->Reply(0, "Done", "a second final for a closed ticket");
    server->Reply(0, "[part]Done", "a part after the final");
    server->Reply(77, "Done", "nobody asked");
    server->ReplyInvalid(1, "Done");
    server->Reply(1, "Done", "second's answer");

    // Messages are handled in order, so everything above reached the client before this one.
    auto item = NextOf(*second);
    ASSERT_EQ(item.kind, Kind::Final);
    EXPECT_EQ(item.message->GetOrigin().GetTicket(), 1);
    EXPECT_EQ(static_cast<TextReply&>(*second->BuildReply(item)).text, "second's answer");
}

TEST_F(CommandClientTest, TimedWaitReportsTimeOutAndTheRequestStaysPending) {
    auto pending = Send("slow");
    EXPECT_EQ(pending->Next(std::chrono::milliseconds(1)).kind, Kind::TimedOut);
    EXPECT_TRUE(pending->IsPending());
    server->Reply(0, "Done", "late but fine");
    EXPECT_EQ(NextOf(*pending).kind, Kind::Final);
    EXPECT_THROW(pending->BuildReply(Pending::Item{Kind::TimedOut, nullptr}),
                 std::invalid_argument);
}

TEST_F(CommandClientTest, StopReleasesEveryWaiterAndLogsTheCount) {
    std::vector<std::unique_ptr<Pending>> handles;
    for (const char* text : {"a", "b", "c"}) {
        handles.push_back(Send(text));
    }
    std::vector<std::future<Kind>> waiters;
    for (auto& handle : handles) {
        waiters.push_back(
            std::async(std::launch::async, [&handle] { return handle->Next().kind; }));
    }
    client->Stop();
    for (auto& waiter : waiters) {
        ASSERT_EQ(waiter.wait_for(kPatience), std::future_status::ready);
        EXPECT_EQ(waiter.get(), Kind::Cancelled);
    }
    EXPECT_TRUE(log->Has(ILogger::Warning,
                         "Stop called with 3 requests were still waiting for a response."));
    EXPECT_TRUE(log->Has(ILogger::Info, "Shut down."));
    EXPECT_EQ(Send("after stop"), nullptr);
    EXPECT_EQ(server->Sent().size(), 3u);

    // A second Stop returns at once: no second shut-down, nothing logged.
    const auto logged = log->Records().size();
    client->Stop();
    EXPECT_EQ(server->ShutDownCalls(), 1);
    EXPECT_EQ(log->Records().size(), logged);
}

TEST_F(CommandClientTest, AbandonedHandleIsForgottenSoStopFindsNothingPending) {
    Send("abandoned").reset();
    auto kept = Send("kept");
    client->Stop();
    EXPECT_TRUE(log->Has(ILogger::Warning,
                         "Stop called with 1 requests were still waiting for a response."));
    EXPECT_EQ(NextOf(*kept).kind, Kind::Cancelled);
}

TEST_F(CommandClientTest, PauseCancelsThenStopShutsDownWithoutJoining) {
    auto a = Send("a");
    auto b = Send("b");
    client->Pause(true);
    EXPECT_EQ(NextOf(*a).kind, Kind::Cancelled);
    EXPECT_EQ(NextOf(*b).kind, Kind::Cancelled);
    EXPECT_TRUE(log->Has(ILogger::Warning,
                         "Pause called with 2 requests were still waiting for a response."));
    EXPECT_EQ(Send("while paused"), nullptr);
    EXPECT_EQ(server->Sent().size(), 2u);
    EXPECT_FALSE(server->IsShutDown());

    client->Stop();
    EXPECT_TRUE(server->IsShutDown());
    EXPECT_TRUE(log->Has(ILogger::Info, "Shut down."));
    client->Pause(false);  // stopped: nothing starts
    EXPECT_EQ(Send("after stop"), nullptr);
}

TEST_F(CommandClientTest, ResumeAfterPauseAnswersLaterRequests) {
    client->Pause(true);
    client->Pause(true);  // already paused: nothing happens
    client->Pause(false);
    client->Pause(false);  // already running: nothing happens
    auto pending = Send("again");
    ASSERT_NE(pending, nullptr);
    EXPECT_EQ(pending->GetRequestId(), 0);
    server->Reply(0, "Done", "answered");
    EXPECT_EQ(NextOf(*pending).kind, Kind::Final);
}

TEST_F(CommandClientTest, SendFailureStopsTheClientAndLogsAtSixty) {
    struct Case {
        std::exception_ptr error;
        std::string logged;
    };
    const std::vector<Case> cases{
        {std::make_exception_ptr(ObjectShutDownException("gone")),
         "Request: internal Messenger shut down."},
        {std::make_exception_ptr(TransportException("socket closed")),
         "Request: internal Messenger error (socket closed)."},
        {std::make_exception_ptr(std::runtime_error("odd")), "Request: unknown error (odd)."},
    };
    for (const auto& failure : cases) {
        SetUp();  // a fresh client and link per case
        auto waiting = Send("waiting");
        server->FailNextSend(failure.error);
        EXPECT_EQ(Send("doomed"), nullptr);
        EXPECT_TRUE(log->Has(ILogger::Fatal, failure.logged)) << failure.logged;
        EXPECT_TRUE(server->IsShutDown());
        EXPECT_EQ(NextOf(*waiting).kind, Kind::Cancelled);
        EXPECT_EQ(Send("after"), nullptr);
    }
}

TEST_F(CommandClientTest, ReceptionFailureStopsTheClientAndLogsAtSixty) {
    auto waiting = Send("waiting");
    server->FailNextReceive(std::make_exception_ptr(TransportException("link lost")));
    EXPECT_EQ(NextOf(*waiting).kind, Kind::Cancelled);
    EXPECT_TRUE(
        log->Has(ILogger::Fatal, "ProcessReception: internal Messenger error (link lost)."));
    // The reception thread stopped the client itself; it must not have tried to join itself.
    client.reset();
    EXPECT_TRUE(log->Has(ILogger::Info, "ProcessReception: stopped."));
    EXPECT_EQ(server->ShutDownCalls(), 1);
}

TEST_F(CommandClientTest, HandleOutlivesItsClient) {
    auto pending = Send("orphan");
    client.reset();
    EXPECT_EQ(NextOf(*pending).kind, Kind::Cancelled);
}

TEST_F(CommandClientTest, AMessengerShutDownFromOutsideStillReleasesEveryWaiter) {
    for (const bool destroyClient : {false, true}) {
        SetUp();
        auto pending = Send("stranded");
        server->ShutDownFromOutside();
        if (destroyClient) {
            client.reset();
        }
        EXPECT_EQ(NextOf(*pending).kind, Kind::Cancelled) << "client destroyed: " << destroyClient;
    }
}

TEST_F(CommandClientTest, RepliesNamingAnotherCommandAreDroppedAndCounted) {
    // A reply record whose field 1 is the identifier {1: "<text>"}, compact-encoded.
    auto naming = [](const std::string& guid) {
        return std::string("\x1c\x18") + static_cast<char>(guid.size()) + guid + '\0' + '\0';
    };
    auto own = client->Request("Echo", [] {
        TextParams params("own");
        params.commandGuid = Plexis::Data::Guid("cmd-1");
        return params;
    }());
    const int ticket = own->GetRequestId();
    server->Reply(ticket, "[part]Done", naming("cmd-0"));
    server->Reply(ticket, "Done", naming("cmd-0"));
    server->Reply(ticket, "[part]Done", naming("cmd-1"));
    server->Reply(ticket, "Done", naming("cmd-1"));

    auto item = NextOf(*own);
    ASSERT_EQ(item.kind, Kind::Partial);
    EXPECT_EQ(item.message->GetPayload().Size(), naming("cmd-1").size());
    EXPECT_EQ(NextOf(*own).kind, Kind::Final);
    EXPECT_EQ(client->GetDroppedReplies().misaddressed, 2u);
}

// A server that never answers, behind a messenger whose Receive gives up at once: the reception
// loop's own idle sleep is then all that keeps it from spinning.
class ImpatientMessenger final : public BaseClientMessenger {
public:
    using Clock = std::chrono::steady_clock;

    bool IsShutDown() const override { return shutDown.load(); }
    void ShutDown() override { shutDown.store(true); }
    void Send(const int&, const std::string&, const Common::Serialization::Buffer&) override {}
    Common::Messaging::ConnectionState GetConnectionState() const override {
        return Common::Messaging::ConnectionState::Connected;
    }
    void SetConnectionStateHandler(ConnectionStateHandler) override {}

    std::unique_ptr<BaseMessage> Receive() override {
        if (shutDown.load()) {
            throw ObjectShutDownException("shut down");
        }
        {
            std::lock_guard<std::mutex> lock(mutex);
            calls.push_back(Clock::now());
        }
        called.notify_all();
        return nullptr;
    }

    /// The times of the first `count` calls; empty if they did not come within `limit`.
    std::vector<Clock::time_point> FirstCalls(std::size_t count, std::chrono::milliseconds limit) {
        std::unique_lock<std::mutex> lock(mutex);
        if (!called.wait_for(lock, limit, [&] { return calls.size() >= count; })) {
            return {};
        }
        return {calls.begin(), calls.begin() + static_cast<long>(count)};
    }

private:
    std::atomic<bool> shutDown{false};
    std::mutex mutex;
    std::condition_variable called;
    std::vector<Clock::time_point> calls;
};

TEST(CommandClientIdleTest, EmptyReceivesThatReturnAtOnceAreSpacedByTenMilliseconds) {
    auto owned = std::make_unique<ImpatientMessenger>();
    ImpatientMessenger& messenger = *owned;
    Plexis::Tessel::Client::CommandClient client(std::move(owned),
                                                 std::make_shared<TextPayloadBuilder>(),
                                                 std::make_shared<TextReplyBuilder>());
    const auto calls = messenger.FirstCalls(6, std::chrono::seconds(30));
    client.Stop();
    ASSERT_EQ(calls.size(), 6u);
    // Five idle turns of at least 10 ms each, less the instant between the loop reading the clock
    // and the messenger recording the first call.
    EXPECT_GE(calls.back() - calls.front(), std::chrono::milliseconds(45));
}

}  // namespace
}  // namespace Korvo::Testing

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Tessel/Client/NotificationClient.h>
#include <Korvo/Plexis/Tessel/Client/NotificationTypes.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

#include "support/RecordingLogger.h"
#include "support/Samples.h"
#include "support/ZmqPeers.h"

namespace Korvo::Testing {
namespace {

using namespace Plexis::Notification;
using namespace Plexis::Tessel::Client;

constexpr std::chrono::seconds kWait{30};

// The bytes a server publishes for `args`, encoded with its own converter.
template <class Args>
std::string Encoded(const Args& args) {
    using Wire = Plexis::Tessel::Serialization::Thrift::Notifier::WireOf<Args>;
    typename Wire::Record record;
    const auto result = typename Wire::ToThrift().To(args, record);
    EXPECT_TRUE(result.success) << result.message;
    auto bytes = Common::Serialization::SerializerImpl<typename Wire::Record>().Serialize(record);
    return {reinterpret_cast<const char*>(bytes->Pointer()), bytes->Size()};
}

// What the callbacks saw, in order: "<list>:<value>" entries, and a way to wait for a count.
class Calls {
public:
    void Add(std::string entry) {
        {
            std::lock_guard<std::mutex> lock(mutex);
            entries.push_back(std::move(entry));
        }
        changed.notify_all();
    }
    bool WaitFor(std::size_t count) {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, kWait, [&] { return entries.size() >= count; });
    }
    std::vector<std::string> Entries() {
        std::lock_guard<std::mutex> lock(mutex);
        return entries;
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::string> entries;
};

class NotificationClientTest : public ::testing::Test {
protected:
    void SetUp() override {
        log = RecordedLogger("NotificationClient", ILogger::Trace);
        client = std::make_unique<NotificationClient>(
            std::vector<Common::Messaging::EndPoint>{
                Common::Messaging::EndPoint(publisher.Address())},
            std::vector<std::string>{""});
        ASSERT_TRUE(publisher.WaitForSubscriptions({""}));
    }

    void TearDown() override { client.reset(); }

    // The client with its callbacks' lock held until the end of the statement: the lists change
    // while the receiving thread runs.
    struct LockedClient {
        std::unique_lock<std::mutex> lock;
        NotificationClient* client;
        NotificationClient* operator->() { return client; }
    };
    LockedClient Locked() { return {client->LockHandlers(), client.get()}; }

    void Publish(const std::string& header, const std::string& payload) {
        publisher.Publish("Test", header, payload);
    }

    PublisherPeer publisher;
    std::shared_ptr<RecordingLogger> log;
    std::unique_ptr<NotificationClient> client;
    Calls calls;
};

// Every notification of the table, with every field set: its own list gets it whole as its
// class, then its family's list gets it with its enumerator.
TEST_F(NotificationClientTest, EveryTypeReachesItsListWholeThenItsFamilyWithItsEnumerator) {
    const auto onFamily = [this](auto* event) {
        using Event = std::remove_pointer_t<decltype(event)>;
        using Family = NotificationFamilyTraits<Event>;
        (Locked().client->*Family::kHandlers)
            .push_back([this](typename Event::Type type, const typename Family::Args&) {
                calls.Add("family:" + std::to_string(type));
            });
    };
    onFamily(static_cast<ClipCommandEvent*>(nullptr));
    onFamily(static_cast<ClipStatusEvent*>(nullptr));
    onFamily(static_cast<ChannelStatusEvent*>(nullptr));
    onFamily(static_cast<ServerStatusEvent*>(nullptr));

    std::vector<std::string> expected;
    ForEachNotification([&](auto* type) {
        using Args = std::remove_pointer_t<decltype(type)>;
        using Traits = NotificationTraits<Args>;
        const std::string name(Traits::kName);
        auto sent = Samples::Filled<Args>();
        if constexpr (std::is_same_v<Args, RecorderStateChangedEventArgs>) {
            sent.channelGuid = Plexis::Data::Channels::Guid::RecorderOf(1, 2);
        } else if constexpr (std::is_same_v<Args, PlayerStateChangedEventArgs>) {
            sent.channelGuid = Plexis::Data::Channels::Guid::PlayerOf(1, 3);
        }
        const std::string bytes = Encoded(sent);
        // What the record carries of `sent`: the arguments hold a few members it has no field for.
        using Wire = Plexis::Tessel::Serialization::Thrift::Notifier::WireOf<Args>;
        typename Wire::Record record;
        Args carried;
        ASSERT_TRUE(typename Wire::ToThrift().To(sent, record).success) << name;
        ASSERT_TRUE(typename Wire::FromThrift().To(record, carried).success) << name;
        (Locked().client->*Traits::kHandlers).push_back([this, name, carried](const Args& args) {
            calls.Add(args == carried ? name : name + " (changed)");
        });
        expected.push_back(name);
        expected.push_back("family:" + std::to_string(Traits::kType));
        Publish(name, bytes);
    });
    ASSERT_TRUE(calls.WaitFor(expected.size()));
    EXPECT_EQ(calls.Entries(), expected);
}

TEST_F(NotificationClientTest, SpecificHandlersRunBeforeGenericOnesInListOrder) {
    Locked()->serverRemovedHandlers.push_back(
        [this](const ServerRemovedEventArgs&) { calls.Add("specific 1"); });
    Locked()->serverRemovedHandlers.push_back(
        [this](const ServerRemovedEventArgs&) { calls.Add("specific 2"); });
    Locked()->serverStatusHandlers.push_back(
        [this](ServerStatusEvent::Type, const ServerStatusEventArgs&) { calls.Add("generic 1"); });
    Publish("ServerRemoved", Encoded(ServerRemovedEventArgs()));
    ASSERT_TRUE(calls.WaitFor(3));
    EXPECT_EQ(calls.Entries(), (std::vector<std::string>{"specific 1", "specific 2", "generic 1"}));
}

TEST_F(NotificationClientTest, BadMessagesAreLoggedAndTheNextOneStillArrives) {
    Locked()->serverRemovedHandlers.push_back(
        [this](const ServerRemovedEventArgs& args) { calls.Add(std::to_string(args.serverId)); });
    Locked()->serverAddedHandlers.push_back(
        [](const ServerAddedEventArgs&) { throw std::runtime_error("callback failed"); });
    ServerRemovedEventArgs marker;
    auto publishMarker = [&](int serverId) {
        marker.serverId = serverId;
        Publish("ServerRemoved", Encoded(marker));
    };

    Publish("NoSuchNotification", "");
    publishMarker(1);
    Publish("ServerRemoved", "");  // no bytes at all: not even the stop byte
    publishMarker(2);
    // An angles-group deletion whose inner record lacks its required fields.
    Publish("AnglesGroupDeletionFinished", std::string("\x1c\x00\x00", 3));
    publishMarker(3);
    Publish("ServerAdded", Encoded(ServerAddedEventArgs()));
    publishMarker(4);
    ASSERT_TRUE(calls.WaitFor(4));
    EXPECT_EQ(calls.Entries(), (std::vector<std::string>{"1", "2", "3", "4"}));

    EXPECT_TRUE(log->Has(ILogger::Error, "Run: serverStatusMessageTypes unknown."));
    EXPECT_TRUE(log->Has(ILogger::Error,
                         "Run: Exception (The input could not be parsed by the deserializer)."));
    EXPECT_TRUE(log->Has(ILogger::Error, "Run: Exception (callback failed)."));
    for (const auto& record : log->Records()) {
        EXPECT_EQ(record.sourceFile, "Korvo/Plexis/Tessel/Client/NotificationClient");
        if (record.text == "Run: serverStatusMessageTypes unknown.") {
            EXPECT_EQ(record.line, 154);
        }
    }
}

TEST_F(NotificationClientTest, ShutdownDuringReceiveEndsWithOneTraceLine) {
    // One notification handled proves the loop runs; it then waits in Receive for the next.
    Locked()->serverRemovedHandlers.push_back(
        [this](const ServerRemovedEventArgs&) { calls.Add("x"); });
    Publish("ServerRemoved", Encoded(ServerRemovedEventArgs()));
    ASSERT_TRUE(calls.WaitFor(1));
    client.reset();
    // A shut-down that lands between two receives ends the loop silently; one that interrupts the
    // wait, as it all but always does here, says so once at level 10.
    const auto records = log->Records();
    ASSERT_LE(records.size(), 1u);
    for (const auto& record : records) {
        EXPECT_EQ(record.level, ILogger::Trace);
        EXPECT_EQ(record.text.rfind("Run: Object shutDown exception (", 0), 0u) << record.text;
        EXPECT_EQ(record.line, 158);
    }
}

TEST(NotificationClient, DestroyedRightAfterConstructionDoesNotHang) {
    PublisherPeer publisher;
    for (int round = 0; round < 20; ++round) {
        NotificationClient client({Common::Messaging::EndPoint(publisher.Address())}, {""});
    }
}

}  // namespace
}  // namespace Korvo::Testing

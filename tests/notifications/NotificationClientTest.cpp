#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Tessel/Client/NotificationClient.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

#include "support/RecordingLogger.h"
#include "support/Samples.h"
#include "support/ZmqPeers.h"

namespace Korvo::Testing {
namespace {

using namespace Plexis::Notification;
using Plexis::Tessel::Client::NotificationClient;
using ChannelGuid = Plexis::Data::Channels::Guid;
namespace Converters = Plexis::Tessel::Serialization::Thrift::Notifier;
namespace Wire = Plexis::Tessel::Serialization::Thrift::Notifier::Generated;

constexpr std::chrono::seconds kWait{30};

// The bytes a server publishes for `args`, encoded with its own converter.
template <class W, class Encoder, class Args>
std::string Encoded(const Args& args) {
    W wire;
    const auto result = Encoder().To(args, wire);
    EXPECT_TRUE(result.success) << result.message;
    auto bytes = Common::Serialization::SerializerImpl<W>().Serialize(wire);
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

TEST_F(NotificationClientTest, EveryTypeReachesItsListAndItsFamilyAsItsClass) {
    // Each specific list records the class it got; each family list records the enumerator.
    auto specific = [this](const char* name) {
        return [this, name](const auto&) { calls.Add(name); };
    };
    Locked()->clipCreationStartedHandlers.push_back(specific("ClipCreationStarted"));
    Locked()->clipCreationFinishedHandlers.push_back(specific("ClipCreationFinished"));
    Locked()->clipUpdateFinishedHandlers.push_back(specific("ClipUpdateFinished"));
    Locked()->clipDeletionFinishedHandlers.push_back(specific("ClipDeletionFinished"));
    Locked()->clipMoveStartedHandlers.push_back(specific("ClipMoveStarted"));
    Locked()->clipMoveFinishedHandlers.push_back(specific("ClipMoveFinished"));
    Locked()->massClipUpdateFinishedHandlers.push_back(specific("MassClipUpdateFinished"));
    Locked()->massClipDeletionFinishedHandlers.push_back(specific("MassClipDeletionFinished"));
    Locked()->recordingRangesChangedHandlers.push_back(specific("RecordingRangesChanged"));
    Locked()->recorderStateChangedHandlers.push_back(specific("RecorderStateChanged"));
    Locked()->playerStateChangedHandlers.push_back(specific("PlayerStateChanged"));
    Locked()->anglesGroupCreationFinishedHandlers.push_back(
        specific("AnglesGroupCreationFinished"));
    Locked()->anglesGroupDeletionFinishedHandlers.push_back(
        specific("AnglesGroupDeletionFinished"));
    Locked()->anglesGroupUpdateFinishedHandlers.push_back(specific("AnglesGroupUpdateFinished"));
    Locked()->serverAddedHandlers.push_back(specific("ServerAdded"));
    Locked()->serverRemovedHandlers.push_back(specific("ServerRemoved"));
    Locked()->disconnectedFromNetworkHandlers.push_back(specific("DisconnectedFromNetwork"));
    Locked()->clipCommandHandlers.push_back(
        [this](ClipCommandEvent::Type type, const ClipCommandEventArgs&) {
            calls.Add("clipCommand:" + std::to_string(type));
        });
    Locked()->clipStatusHandlers.push_back(
        [this](ClipStatusEvent::Type type, const ClipStatusEventArgs&) {
            calls.Add("clipStatus:" + std::to_string(type));
        });
    Locked()->channelStatusHandlers.push_back(
        [this](ChannelStatusEvent::Type type, const ChannelStatusEventArgs& args) {
            calls.Add("channelStatus:" + std::to_string(type) + ":" + args.channelGuid.ToString());
        });
    Locked()->serverStatusHandlers.push_back(
        [this](ServerStatusEvent::Type type, const ServerStatusEventArgs& args) {
            calls.Add("serverStatus:" + std::to_string(type) + ":" + std::to_string(args.serverId));
        });

    ClipCreationEventArgs creation;
    creation.commandGuid = Plexis::Data::Guid("cmd");
    creation.clip = Samples::Clip(1);
    Publish("ClipCreationStarted",
            Encoded<Wire::ClipCreationStartedEventArgs,
                    Converters::ClipCreationStartedEventArgsToThriftConverter>(creation));
    Publish("ClipCreationFinished",
            Encoded<Wire::ClipCreationFinishedEventArgs,
                    Converters::ClipCreationFinishedEventArgsToThriftConverter>(
                ClipCreationFinishedEventArgs()));
    Publish("ClipUpdateFinished", Encoded<Wire::ClipUpdateFinishedEventArgs,
                                          Converters::ClipUpdateFinishedEventArgsToThriftConverter>(
                                      ClipUpdateFinishedEventArgs()));
    Publish("ClipDeletionFinished",
            Encoded<Wire::ClipDeletionFinishedEventArgs,
                    Converters::ClipDeletionFinishedEventArgsToThriftConverter>(
                ClipDeletionFinishedEventArgs()));
    Publish("ClipMoveStarted",
            Encoded<Wire::ClipMoveStartedEventArgs,
                    Converters::ClipMoveStartedEventArgsToThriftConverter>(ClipMoveEventArgs()));
    Publish("ClipMoveFinished", Encoded<Wire::ClipMoveFinishedEventArgs,
                                        Converters::ClipMoveFinishedEventArgsToThriftConverter>(
                                    ClipMoveFinishedEventArgs()));
    Publish("MassClipUpdateFinished",
            Encoded<Wire::MassClipUpdateFinishedEventArgs,
                    Converters::MassClipUpdateFinishedEventArgsToThriftConverter>(
                MassClipUpdateEventArgs()));
    Publish("MassClipDeletionFinished",
            Encoded<Wire::MassClipDeletionFinishedEventArgs,
                    Converters::MassClipDeletionFinishedEventArgsToThriftConverter>(
                MassClipDeletionEventArgs()));
    RecordingRangesChangedEventArgs ranges;
    ranges.channelGuid = ChannelGuid::RecorderOf(1, 2);
    ranges.ranges = Samples::Train(1).recordingRanges;
    Publish("RecordingRangesChanged",
            Encoded<Wire::RecordingRangesChangedEventArgs,
                    Converters::RecordingRangesChangedEventArgsToThriftConverter>(ranges));
    RecorderStateChangedEventArgs recorder;
    recorder.channelGuid = ChannelGuid::RecorderOf(1, 2);
    recorder.serverId = 1;
    recorder.state = Samples::RecorderState(1);
    Publish("RecorderStateChanged",
            Encoded<Wire::RecorderStateChangedEventArgs,
                    Converters::RecorderStateChangedEventArgsToThriftConverter>(recorder));
    PlayerStateChangedEventArgs player;
    player.channelGuid = ChannelGuid::PlayerOf(1, 3);
    player.serverId = 1;
    player.state = Samples::PlayerState(1);
    Publish("PlayerStateChanged",
            Encoded<Wire::PlayerStateChangedEventArgs,
                    Converters::PlayerStateChangedEventArgsToThriftConverter>(player));
    AnglesGroupCreationFinishedEventArgs created;
    created.anglesGroup = Samples::AnglesGroup(1);
    Publish("AnglesGroupCreationFinished",
            Encoded<Wire::AnglesGroupCreationFinishedEventArgs,
                    Converters::AnglesGroupCreationFinishedEventArgsToThriftConverter>(created));
    AnglesGroupDeletionFinishedEventArgs deleted;
    deleted.groupGuid = Plexis::Data::Clips::Groups::Guid("group-1");
    Publish("AnglesGroupDeletionFinished",
            Encoded<Wire::AnglesGroupDeletionFinishedEventArgs,
                    Converters::AnglesGroupDeletionFinishedEventArgsToThriftConverter>(deleted));
    Publish("AnglesGroupUpdateFinished",
            Encoded<Wire::AnglesGroupUpdateFinishedEventArgs,
                    Converters::AnglesGroupUpdateFinishedEventArgsToThriftConverter>(
                AnglesGroupUpdateFinishedEventArgs()));
    ServerAddedEventArgs added;
    added.serverId = 4;
    added.server = Samples::Server(4);
    Publish("ServerAdded",
            Encoded<Wire::ServerAddedEventArgs, Converters::ServerAddedEventArgsToThriftConverter>(
                added));
    ServerRemovedEventArgs removed;
    removed.serverId = 5;
    Publish(
        "ServerRemoved",
        Encoded<Wire::ServerRemovedEventArgs, Converters::ServerRemovedEventArgsToThriftConverter>(
            removed));
    DisconnectedFromNetworkEventArgs disconnected;
    disconnected.serverId = 6;
    Publish("DisconnectedFromNetwork",
            Encoded<Wire::DisconnectedFromNetworkEventArgs,
                    Converters::DisconnectedFromNetworkEventArgsToThriftConverter>(disconnected));

    ASSERT_TRUE(calls.WaitFor(34));
    const std::vector<std::string> expected{"ClipCreationStarted",
                                            "clipCommand:0",
                                            "ClipCreationFinished",
                                            "clipCommand:1",
                                            "ClipUpdateFinished",
                                            "clipCommand:3",
                                            "ClipDeletionFinished",
                                            "clipCommand:5",
                                            "ClipMoveStarted",
                                            "clipCommand:7",
                                            "ClipMoveFinished",
                                            "clipCommand:8",
                                            "MassClipUpdateFinished",
                                            "clipCommand:10",
                                            "MassClipDeletionFinished",
                                            "clipCommand:12",
                                            "RecordingRangesChanged",
                                            "clipStatus:0",
                                            "RecorderStateChanged",
                                            "channelStatus:0:recorder:1:2",
                                            "PlayerStateChanged",
                                            "channelStatus:1:player:1:3",
                                            "AnglesGroupCreationFinished",
                                            "clipCommand:14",
                                            "AnglesGroupDeletionFinished",
                                            "clipCommand:18",
                                            "AnglesGroupUpdateFinished",
                                            "clipCommand:16",
                                            "ServerAdded",
                                            "serverStatus:0:4",
                                            "ServerRemoved",
                                            "serverStatus:1:5",
                                            "DisconnectedFromNetwork",
                                            "serverStatus:2:6"};
    EXPECT_EQ(calls.Entries(), expected);
}

TEST_F(NotificationClientTest, ArgumentsArriveWhole) {
    PlayerStateChangedEventArgs sent;
    sent.channelGuid = ChannelGuid::PlayerOf(2, 5);
    sent.serverId = 2;
    sent.timestamp = 123;
    sent.state = Samples::PlayerState(3);
    std::optional<PlayerStateChangedEventArgs> received;
    Locked()->playerStateChangedHandlers.push_back([&](const PlayerStateChangedEventArgs& args) {
        received = args;
        calls.Add("player");
    });
    Publish("PlayerStateChanged",
            Encoded<Wire::PlayerStateChangedEventArgs,
                    Converters::PlayerStateChangedEventArgsToThriftConverter>(sent));
    ASSERT_TRUE(calls.WaitFor(1));
    ASSERT_TRUE(received.has_value());
    EXPECT_TRUE(*received == sent);
}

TEST_F(NotificationClientTest, SpecificHandlersRunBeforeGenericOnesInListOrder) {
    Locked()->serverRemovedHandlers.push_back(
        [this](const ServerRemovedEventArgs&) { calls.Add("specific 1"); });
    Locked()->serverRemovedHandlers.push_back(
        [this](const ServerRemovedEventArgs&) { calls.Add("specific 2"); });
    Locked()->serverStatusHandlers.push_back(
        [this](ServerStatusEvent::Type, const ServerStatusEventArgs&) { calls.Add("generic 1"); });
    Publish(
        "ServerRemoved",
        Encoded<Wire::ServerRemovedEventArgs, Converters::ServerRemovedEventArgsToThriftConverter>(
            ServerRemovedEventArgs()));
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
        Publish("ServerRemoved",
                Encoded<Wire::ServerRemovedEventArgs,
                        Converters::ServerRemovedEventArgsToThriftConverter>(marker));
    };

    Publish("NoSuchNotification", "");
    publishMarker(1);
    Publish("ServerRemoved", "");  // no bytes at all: not even the stop byte
    publishMarker(2);
    // An angles-group deletion whose inner record lacks its required fields.
    Publish("AnglesGroupDeletionFinished", std::string("\x1c\x00\x00", 3));
    publishMarker(3);
    Publish("ServerAdded",
            Encoded<Wire::ServerAddedEventArgs, Converters::ServerAddedEventArgsToThriftConverter>(
                ServerAddedEventArgs()));
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
    Publish(
        "ServerRemoved",
        Encoded<Wire::ServerRemovedEventArgs, Converters::ServerRemovedEventArgsToThriftConverter>(
            ServerRemovedEventArgs()));
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

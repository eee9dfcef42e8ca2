#include <future>
#include <map>
#include <optional>

#include <Korvo/Common/Messaging/Client/Subscription.h>
#include <Korvo/Common/Messaging/ObjectShutDownException.h>

#include "messaging/MessagingFixture.h"

namespace Korvo::Testing {
namespace {

using Common::Messaging::ObjectShutDownException;
using Common::Messaging::Client::Subscription;
using SubscriptionTest = MessagingFixture;

// The next event, or nothing (and a failed test, and a shut-down subscription) after kPatience.
std::optional<Subscription::Event> ReceiveFrom(Subscription& subscription) {
    auto event = std::async(std::launch::async, [&] { return subscription.Receive(); });
    if (event.wait_for(kPatience) != std::future_status::ready) {
        ADD_FAILURE() << "no notification arrived";
        subscription.ShutDown();
        return std::nullopt;
    }
    return event.get();
}

TEST_F(SubscriptionTest, ReceivesFromTwoPublishersFilteredByTopicInPublishedOrder) {
    const std::vector<std::string> topics{"ChannelStatus", "ServerStatus/replay-2"};
    PublisherPeer first;
    PublisherPeer second;
    Subscription subscription({EndPoint(first.Address()), EndPoint(second.Address())}, topics,
                              Options());
    ASSERT_TRUE(first.WaitForSubscriptions(topics));
    ASSERT_TRUE(second.WaitForSubscriptions(topics));

    first.Publish("ClipStatus", "RecordingRangesChanged", "filtered out");
    first.Publish("ChannelStatus/replay-1", "PlayerStateChanged", "p1");
    second.Publish("ServerStatus/replay-3", "ServerAdded", "filtered out");
    second.PublishFrames({"ChannelStatus", "TwoFramesOnly"});
    second.Publish("ServerStatus/replay-2", "ServerAdded", "s2");
    first.Publish("ChannelStatus", "RecorderStateChanged", "r1");
    // Each publisher's messages arrive in order, so once both ends are in nothing else is due.
    first.Publish("ChannelStatus", "End", "");
    second.Publish("ChannelStatus", "End", "");

    std::map<std::size_t, std::vector<std::string>> received;
    for (int ends = 0; ends < 2;) {
        auto event = ReceiveFrom(subscription);
        ASSERT_TRUE(event);
        const auto& message = event->Payload();
        if (message.GetHeader() == "End") {
            ++ends;
            continue;
        }
        received[event->Source()].push_back(
            event->Topic() + " " + message.GetHeader() + " " +
            std::string(reinterpret_cast<const char*>(message.Data()), message.DataSize()));
    }
    EXPECT_EQ(received[0], (std::vector<std::string>{"ChannelStatus/replay-1 PlayerStateChanged p1",
                                                     "ChannelStatus RecorderStateChanged r1"}));
    EXPECT_EQ(received[1], (std::vector<std::string>{"ServerStatus/replay-2 ServerAdded s2"}));
    EXPECT_EQ(Logged("Receive: dropped a malformed notification from " + second.Address() +
                     " (2 frames instead of 3)."),
              1);
}

TEST_F(SubscriptionTest, EachEndpointReportsItsOwnStateAndShutDownEndsABlockedReceive) {
    PublisherPeer staying;
    auto leaving = std::make_unique<PublisherPeer>();
    std::map<std::string, StateLog> states;
    states[staying.Address()];
    states[leaving->Address()];
    Subscription subscription({EndPoint(staying.Address()), EndPoint(leaving->Address())}, {},
                              Options(),
                              [&states](const EndPoint& endpoint, ConnectionState state) {
                                  states.at(endpoint.Address()).Record(state);
                              });
    ASSERT_TRUE(states.at(staying.Address()).WaitFor(ConnectionState::Connected));
    ASSERT_TRUE(states.at(leaving->Address()).WaitFor(ConnectionState::Connected));

    const std::string gone = leaving->Address();
    leaving.reset();
    ASSERT_TRUE(states.at(gone).WaitFor(ConnectionState::Reconnecting));
    EXPECT_EQ(
        subscription.GetConnectionStates(),
        (std::vector<ConnectionState>{ConnectionState::Connected, ConnectionState::Reconnecting}));

    auto blocked = std::async(std::launch::async, [&] { return subscription.Receive(); });
    subscription.ShutDown();
    ASSERT_EQ(blocked.wait_for(kPatience), std::future_status::ready);
    EXPECT_THROW(blocked.get(), ObjectShutDownException);
    EXPECT_TRUE(subscription.IsShutDown());
    EXPECT_THROW(subscription.Receive(), ObjectShutDownException);
    EXPECT_TRUE(states.at(staying.Address()).WaitFor(ConnectionState::ShutDown));
    EXPECT_TRUE(states.at(gone).WaitFor(ConnectionState::ShutDown));
}

}  // namespace
}  // namespace Korvo::Testing

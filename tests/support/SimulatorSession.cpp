#include "support/SimulatorSession.h"

#include <thread>

namespace Korvo::Testing {

using namespace Plexis::Tessel::Client;
using Common::Messaging::ConnectionState;
using Common::Messaging::EndPoint;

std::unique_ptr<CommandClient> ConnectCommandClient(const std::string& endpoint, bool channel) {
    auto messenger = std::make_unique<ZmqMessenger>(EndPoint(endpoint));
    std::shared_ptr<CommandParamsPayloadBuilder> payloads;
    std::shared_ptr<CommandReplyBuilder> replies;
    if (channel) {
        payloads = std::make_shared<ChannelsCommandParamsPayloadBuilder>();
        replies = std::make_shared<ChannelCommandReplyBuilder>();
    } else {
        payloads = std::make_shared<DataCommandParamsPayloadBuilder>();
        replies = std::make_shared<DataCommandReplyBuilder>();
    }
    // Room for the longest listing the tests ask for (20,000 clips), which a sanitizer build may
    // read more slowly than the simulator writes it.
    CommandClient::Limits limits;
    limits.waitingReplyBytes = std::size_t{64} << 20;
    auto client =
        std::make_unique<CommandClient>(std::move(messenger), payloads, replies, limits);
    // A command is only sent on a link that is up; wait for it rather than lose the first one.
    EXPECT_TRUE(Eventually(
        [&] { return client->GetConnectionState() == ConnectionState::Connected; }));
    return client;
}

SimulatorSession::SimulatorSession(SimulatorOptions options)
    : simulator(std::make_unique<Simulator>(std::move(options))) {
    channelClient = ConnectCommandClient(simulator->CommandEndpoint(), true);
    dataClient = ConnectCommandClient(simulator->CommandEndpoint(), false);
    notifications = std::make_unique<NotificationClient>(
        std::vector<EndPoint>{EndPoint(simulator->NotificationEndpoint())},
        std::vector<std::string>{});
    {
        auto lock = notifications->LockHandlers();
        auto& client = *notifications;
        inbox.Attach(client.clipCreationStartedHandlers);
        inbox.Attach(client.clipCreationFinishedHandlers);
        inbox.Attach(client.clipUpdateFinishedHandlers);
        inbox.Attach(client.clipDeletionFinishedHandlers);
        inbox.Attach(client.clipMoveStartedHandlers);
        inbox.Attach(client.clipMoveFinishedHandlers);
        inbox.Attach(client.massClipUpdateFinishedHandlers);
        inbox.Attach(client.massClipDeletionFinishedHandlers);
        inbox.Attach(client.recordingRangesChangedHandlers);
        inbox.Attach(client.recorderStateChangedHandlers);
        inbox.Attach(client.playerStateChangedHandlers);
        inbox.Attach(client.anglesGroupCreationFinishedHandlers);
        inbox.Attach(client.anglesGroupDeletionFinishedHandlers);
        inbox.Attach(client.anglesGroupUpdateFinishedHandlers);
        inbox.Attach(client.serverAddedHandlers);
        inbox.Attach(client.serverRemovedHandlers);
        inbox.Attach(client.disconnectedFromNetworkHandlers);
    }
    EXPECT_TRUE(simulator->WaitForSubscriber("", kSessionPatience));
}

SimulatorSession::~SimulatorSession() {
    // Clients first: their threads use the inbox; then the server.
    notifications.reset();
    channelClient.reset();
    dataClient.reset();
    simulator.reset();
}

Answer SimulatorSession::Ask(const std::string& name, const Commands::CommandParams& params,
                             bool channel) {
    Answer answer;
    auto pending = (channel ? channelClient : dataClient)->Request(name, params);
    if (!pending) {
        ADD_FAILURE() << name << " could not be sent";
        return answer;
    }
    using Kind = PendingCommandReply::ItemKind;
    while (pending->IsPending()) {
        auto item = pending->Next(kSessionPatience);
        if (item.kind != Kind::Partial && item.kind != Kind::Final) {
            ADD_FAILURE() << name << ": no reply (outcome " << static_cast<int>(item.kind) << ")";
            break;
        }
        answer.headers.push_back(item.message->GetHeader());
        answer.replies.push_back(pending->BuildReply(item));
    }
    return answer;
}

}  // namespace Korvo::Testing

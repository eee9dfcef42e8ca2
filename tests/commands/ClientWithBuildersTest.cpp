#include <gtest/gtest.h>

#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Tessel/Client/CommandClient.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetServersCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PingCommandParams.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>

#include "support/InProcessMessenger.h"
#include "support/Samples.h"

namespace Korvo::Testing {
namespace {

using namespace Plexis::Tessel::HighLevelOperations::Commands;
using Plexis::Tessel::Client::PendingCommandReply;
namespace Wire = Plexis::Tessel::Serialization::Thrift::Commands::Generated;
namespace Converters = Plexis::Tessel::Serialization::Thrift::Commands;

// A command built by the real payload builder crosses the client, and the reply a server encodes
// comes back as a typed domain reply through the real reply builder.
TEST(CommandClientWithBuilders, PingPayloadGoesOutAndItsReplyComesBackTyped) {
    auto server = std::make_shared<InProcessServer>();
    Plexis::Tessel::Client::CommandClient client(
        std::make_unique<InProcessMessenger>(server),
        std::make_shared<Plexis::Tessel::Client::DataCommandParamsPayloadBuilder>(),
        std::make_shared<Plexis::Tessel::Client::DataCommandReplyBuilder>());

    PingCommandParams ping;
    ping.commandGuid = Plexis::Data::Guid("ping-42");
    auto pending = client.Request("PingCommand", ping);
    ASSERT_NE(pending, nullptr);

    const auto sent = server->TakeSent();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].name, "PingCommand");
    Wire::PingCommandParams received;
    Common::Serialization::DeserializerImpl<Wire::PingCommandParams>().Deserialize(
        reinterpret_cast<const unsigned char*>(sent[0].payload.data()),
        static_cast<unsigned int>(sent[0].payload.size()), received);
    EXPECT_EQ(received.commandGuid.value, "ping-42");

    GetServersCommandReply answer(Plexis::Data::Guid(received.commandGuid.value));
    answer.servers = {Samples::Server(1)};
    Wire::GetServersCommandReply wire;
    ASSERT_TRUE(Converters::GetServersCommandReplyToThriftConverter().To(answer, wire).success);
    auto bytes =
        Common::Serialization::SerializerImpl<Wire::GetServersCommandReply>().Serialize(wire);
    server->Reply(sent[0].ticket, "GetServersCommandReply",
                  std::string(reinterpret_cast<const char*>(bytes->Pointer()), bytes->Size()));

    auto item = pending->Next(std::chrono::seconds(30));
    ASSERT_EQ(item.kind, PendingCommandReply::ItemKind::Final);
    auto reply = pending->BuildReply(item);
    ASSERT_EQ(reply->GetType(), GetServersCommandReply::kType);
    EXPECT_TRUE(static_cast<GetServersCommandReply&>(*reply) == answer);
}

}  // namespace
}  // namespace Korvo::Testing

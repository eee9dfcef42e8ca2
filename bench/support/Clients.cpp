#include "support/Clients.h"

#include <array>
#include <cstdint>

#include <Korvo/Plexis/Tessel/Client/ZmqMessenger.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SuccessReply.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/DataCommands_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Replies_types.h>

#include "support/BareThrift.h"
#include "support/Measure.h"

namespace Korvo::Bench {
namespace {

using Common::Messaging::ConnectionState;
using Plexis::Tessel::Client::CommandClient;
using Plexis::Tessel::Client::PendingCommandReply;
namespace Commands = Plexis::Tessel::HighLevelOperations::Commands;
namespace Wire = Plexis::Tessel::Serialization::Thrift::Commands::Generated;

}  // namespace

std::unique_ptr<CommandClient> ConnectedClient(const std::string& address) {
    auto client = std::make_unique<CommandClient>(
        std::make_unique<Plexis::Tessel::Client::ZmqMessenger>(
            Common::Messaging::EndPoint(address)),
        std::make_shared<Plexis::Tessel::Client::DataCommandParamsPayloadBuilder>(),
        std::make_shared<Plexis::Tessel::Client::DataCommandReplyBuilder>());
    if (!WaitUntil([&] { return client->GetConnectionState() == ConnectionState::Connected; })) {
        return nullptr;
    }
    return client;
}

const Commands::PingCommandParams& Ping() {
    static const Commands::PingCommandParams ping = [] {
        Commands::PingCommandParams params;
        params.commandGuid = Plexis::Data::Guid("benchmark-ping");
        return params;
    }();
    return ping;
}

bool PingThrough(CommandClient& client) {
    auto handle = client.Request("PingCommand", Ping());
    if (!handle) {
        return false;
    }
    const PendingCommandReply::Item item = handle->Next();
    if (item.kind != PendingCommandReply::ItemKind::Final) {
        return false;
    }
    const auto reply = handle->BuildReply(item);
    return dynamic_cast<const Commands::SuccessReply*>(reply.get()) != nullptr;
}

BareDealer::BareDealer(zmq::context_t& context, const std::string& address)
    : socket(context, zmq::socket_type::dealer) {
    socket.set(zmq::sockopt::linger, 0);
    socket.connect(address);
    Wire::PingCommandParams ping;
    ping.__set_commandGuid(Plexis::Data::Generated::Guid());
    ping.commandGuid.__set_value(Ping().commandGuid.GetValue());
    payload = BareThrift::Encode(ping);
}

void BareDealer::Send() {
    const auto bits = static_cast<std::uint32_t>(ticket++);
    const unsigned char ticketBytes[4] = {
        static_cast<unsigned char>(bits), static_cast<unsigned char>(bits >> 8),
        static_cast<unsigned char>(bits >> 16), static_cast<unsigned char>(bits >> 24)};
    // Frames made from copies of the bytes, as the messenger makes them.
    socket.send(zmq::message_t(ticketBytes, sizeof ticketBytes), zmq::send_flags::sndmore);
    socket.send(zmq::message_t(std::string_view("PingCommand")), zmq::send_flags::sndmore);
    socket.send(zmq::message_t(payload.data(), payload.size()), zmq::send_flags::none);
}

bool BareDealer::Receive() {
    std::array<zmq::message_t, 3> frames;
    for (zmq::message_t& frame : frames) {
        if (!socket.recv(frame)) {
            return false;
        }
    }
    if (frames[1].to_string_view() != "SuccessReply") {
        return false;
    }
    Wire::SuccessReply reply;
    BareThrift::Decode(frames[2].data(), frames[2].size(), reply);
    return reply.__isset.commandGuid;
}

}  // namespace Korvo::Bench

#include "client/ReplyIdentity.h"

#include <exception>

#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Replies.h>

namespace Korvo::Plexis::Tessel::Client::Detail {

std::optional<std::string> CarriedCommandGuid(const BaseMessage& reply) {
    // The smallest reply record holds field 1 as a command identifier and nothing else, so
    // reading any reply as one skips everything but that field, with the same limits as any
    // decoding of untrusted bytes.
    Serialization::Thrift::Commands::Generated::SuccessReply identity;
    try {
        Common::Serialization::DeserializerImpl<decltype(identity)>().Deserialize(
            reply.Data(), reply.DataSize(), identity);
    } catch (const std::exception&) {
        return std::nullopt;
    }
    if (!identity.__isset.commandGuid || identity.commandGuid.value.empty()) {
        return std::nullopt;
    }
    return std::move(identity.commandGuid.value);
}

}  // namespace Korvo::Plexis::Tessel::Client::Detail

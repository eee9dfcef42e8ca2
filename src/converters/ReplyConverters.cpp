#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>

#include "converters/RecordConverterImpl.h"

namespace Korvo::Plexis::Tessel::Serialization::Thrift {

#define KORVO_REPLY_PAIR(Domain, ...)                                                              \
    KORVO_INSTANTIATE_CONVERTERS(HighLevelOperations::Commands::Domain, Commands::Generated::Domain, \
                                 #Domain)
KORVO_TESSEL_REPLIES(KORVO_REPLY_PAIR)

namespace Mapping {

using DomainChannelReply = DomainCommands::ChannelCommandReply;
using WireChannelReply = WireCommands::ChannelCommandReply;

ConversionResult Leaf<DomainChannelReply, WireChannelReply>::ToWire(
    const DomainChannelReply& source, WireChannelReply& target) {
    if (source.count < 0 ||
        source.count > static_cast<std::int32_t>(DomainChannelReply::kCapacity)) {
        return LeafFailure("count " + std::to_string(source.count) +
                           " is outside the 0 to 12 results the reply holds");
    }
    target = WireChannelReply();
    target.__isset.commandGuid = true;
    Mapping::ToWire(source.commandGuid, target.commandGuid);
    target.__isset.results = true;
    for (const auto& result : source) {
        WireCommands::ChannelResult wire;
        if (!result.channelGuid.IsUndefined()) {
            wire.__isset.channelGuid = true;
            auto converted = Mapping::ToWire(result.channelGuid, wire.channelGuid);
            if (!converted.success) {
                return Prefixed("results[]", std::move(converted));
            }
        }
        wire.__isset.status = true;
        Mapping::ToWire(result.status, wire.status);
        target.results.push_back(std::move(wire));
    }
    return {};
}

ConversionResult Leaf<DomainChannelReply, WireChannelReply>::FromWire(
    const WireChannelReply& source, DomainChannelReply& target) {
    if (source.__isset.commandGuid) {
        Mapping::FromWire(source.commandGuid, target.commandGuid);
    }
    if (!source.__isset.results) {
        return {};
    }
    if (source.results.size() > DomainChannelReply::kCapacity) {
        return LeafFailure("the server sent " + std::to_string(source.results.size()) +
                           " channel results; a ChannelCommandReply holds at most 12");
    }
    target.count = 0;
    for (const auto& wire : source.results) {
        DomainCommands::ChannelResult result;
        if (wire.__isset.channelGuid) {
            auto converted = Mapping::FromWire(wire.channelGuid, result.channelGuid);
            if (!converted.success) {
                return Prefixed("results[" + std::to_string(target.count) + "]",
                                std::move(converted));
            }
        }
        if (wire.__isset.status) {
            Mapping::FromWire(wire.status, result.status);
        }
        target.results[static_cast<std::size_t>(target.count++)] = result;
    }
    return {};
}

}  // namespace Mapping
}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift

#include "converters/Leaves.h"

namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping {

using ChannelGuid = DomainData::Channels::Guid;
using DomainBoundary = DomainData::Channels::LoadBoundary;

ConversionResult Leaf<ChannelGuid, WireData::Guid>::ToWire(const ChannelGuid& source,
                                                           WireData::Guid& target) {
    if (source.IsUndefined()) {
        return LeafFailure("the channel is undefined; name a player or a recorder");
    }
    target.value = source.ToString();
    return {};
}

ConversionResult Leaf<ChannelGuid, WireData::Guid>::FromWire(const WireData::Guid& source,
                                                             ChannelGuid& target) {
    // A text of another form is kept as an opaque identifier; only an over-long one is refused.
    auto channel = ChannelGuid::FromWireText(source.value);
    if (!channel) {
        return LeafFailure("a channel identifier of " + std::to_string(source.value.size()) +
                           " bytes is longer than the " +
                           std::to_string(ChannelGuid::kMaxTextLength) + " kept");
    }
    target = *channel;
    return {};
}

ConversionResult Leaf<DomainBoundary, WireChannels::LoadBoundary>::ToWire(
    const DomainBoundary& source, WireChannels::LoadBoundary& target) {
    if (source.absoluteTimepoint && source.relativeFieldCount) {
        return LeafFailure("a load boundary is either absolute or relative, not both");
    }
    target = WireChannels::LoadBoundary();
    target.type = source.type;
    auto& value = target.specializedLoadBoundary;
    if (source.absoluteTimepoint) {
        value.__set_absoluteLoadBoundary(WireChannels::AbsoluteLoadBoundary());
        value.absoluteLoadBoundary.timepoint = *source.absoluteTimepoint;
    }
    if (source.relativeFieldCount) {
        value.__set_relativeLoadBoundary(WireChannels::RelativeLoadBoundary());
        value.relativeLoadBoundary.fieldCount = *source.relativeFieldCount;
    }
    return {};
}

ConversionResult Leaf<DomainBoundary, WireChannels::LoadBoundary>::FromWire(
    const WireChannels::LoadBoundary& source, DomainBoundary& target) {
    const auto& value = source.specializedLoadBoundary;
    target = DomainBoundary();
    target.type = source.type;
    if (value.__isset.absoluteLoadBoundary) {
        target.absoluteTimepoint = value.absoluteLoadBoundary.timepoint;
    }
    if (value.__isset.relativeLoadBoundary) {
        target.relativeFieldCount = value.relativeLoadBoundary.fieldCount;
    }
    return {};
}

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping

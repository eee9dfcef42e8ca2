#pragma once

// The conversions that do not follow from the field lists: identifiers travel as the `Guid` wire
// record (one text), channel identifiers as that text in the form "player:<server>:<channel>" or
// "recorder:<server>:<channel>", load boundaries as a type and a one-of value; the channel reply
// keeps its results in a fixed array, and the player and recorder events carry their channel as a
// server and a channel number.

#include <type_traits>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/Channels/LoadBoundary.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Channels_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Common_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

#include "converters/WireFields.h"

namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping {

namespace DomainData = ::Korvo::Plexis::Data;
namespace WireData = ::Korvo::Plexis::Data::Generated;
namespace WireChannels = ::Korvo::Plexis::Tessel::Serialization::Thrift::Data::Channels::Generated;
namespace DomainCommands = ::Korvo::Plexis::Tessel::HighLevelOperations::Commands;
namespace WireCommands = ::Korvo::Plexis::Tessel::Serialization::Thrift::Commands::Generated;
namespace Events = ::Korvo::Plexis::Notification;
namespace WireEvents = ::Korvo::Plexis::Tessel::Serialization::Thrift::Notifier::Generated;

/// Any identifier class (`Data::Guid` and the ones derived from it) and the `Guid` record.
template <class Domain>
struct Leaf<Domain, WireData::Guid, std::enable_if_t<std::is_base_of_v<DomainData::Guid, Domain>>> {
    static ConversionResult ToWire(const Domain& source, WireData::Guid& target) {
        target.value = source.GetValue();
        return {};
    }
    static ConversionResult FromWire(const WireData::Guid& source, Domain& target) {
        target = Domain(source.value);
        return {};
    }
};

/// A channel identifier and its text. Encoding an undefined channel fails: every channel the
/// protocol carries names a player or a recorder. Decoding the empty text gives the undefined
/// channel (the sender did not say); any other text must be well formed.
template <>
struct Leaf<DomainData::Channels::Guid, WireData::Guid> {
    static ConversionResult ToWire(const DomainData::Channels::Guid& source,
                                   WireData::Guid& target);
    static ConversionResult FromWire(const WireData::Guid& source,
                                     DomainData::Channels::Guid& target);
};

/// A load boundary: `type` and at most one of an absolute time point and a relative distance.
template <>
struct Leaf<DomainData::Channels::LoadBoundary, WireChannels::LoadBoundary> {
    static ConversionResult ToWire(const DomainData::Channels::LoadBoundary& source,
                                   WireChannels::LoadBoundary& target);
    static ConversionResult FromWire(const WireChannels::LoadBoundary& source,
                                     DomainData::Channels::LoadBoundary& target);
};

/// The channel reply keeps its results in a fixed array of `ChannelCommandReply::kCapacity`
/// entries: decoding more results fails, and an undefined channel in a result is left out of the
/// encoding (the wire field is optional).
template <>
struct Leaf<DomainCommands::ChannelCommandReply, WireCommands::ChannelCommandReply> {
    static ConversionResult ToWire(const DomainCommands::ChannelCommandReply& source,
                                   WireCommands::ChannelCommandReply& target);
    static ConversionResult FromWire(const WireCommands::ChannelCommandReply& source,
                                     DomainCommands::ChannelCommandReply& target);
};

/// A player or recorder event: the wire's server and channel number become the argument's channel
/// identifier of kind `Kind`, and back.
template <class Args, class Wire, DomainData::Channels::Guid::Type Kind>
struct ChannelEventLeaf {
    static ConversionResult ToWire(const Args& source, Wire& target) {
        target = Wire();
        target.__set_serverId(source.serverId);
        target.__set_timestamp(source.timestamp);
        if (!source.channelGuid.IsUndefined()) {
            if (source.channelGuid.GetType() != Kind) {
                return LeafFailure("channelGuid '" + source.channelGuid.ToString() +
                                   "' is not a channel of the kind this event reports");
            }
            target.__set_channelNumber(static_cast<std::int32_t>(source.channelGuid.GetChannel()));
        }
        target.__isset.state = true;
        return Prefixed("state", Mapping::ToWire(source.state, target.state));
    }
    static ConversionResult FromWire(const Wire& source, Args& target) {
        if (source.__isset.serverId) {
            target.serverId = source.serverId;
        }
        if (source.__isset.timestamp) {
            target.timestamp = source.timestamp;
        }
        if (source.__isset.channelNumber) {
            if (source.channelNumber < 0) {
                return LeafFailure("channelNumber " + std::to_string(source.channelNumber) +
                                   " is negative");
            }
            target.channelGuid = DomainData::Channels::Guid(
                Kind, target.serverId, static_cast<unsigned int>(source.channelNumber));
        }
        if (!source.__isset.state) {
            return {};
        }
        return Prefixed("state", Mapping::FromWire(source.state, target.state));
    }
};

template <>
struct Leaf<Events::RecorderStateChangedEventArgs, WireEvents::RecorderStateChangedEventArgs>
    : ChannelEventLeaf<Events::RecorderStateChangedEventArgs,
                       WireEvents::RecorderStateChangedEventArgs,
                       DomainData::Channels::Guid::Recorder> {};

template <>
struct Leaf<Events::PlayerStateChangedEventArgs, WireEvents::PlayerStateChangedEventArgs>
    : ChannelEventLeaf<Events::PlayerStateChangedEventArgs, WireEvents::PlayerStateChangedEventArgs,
                       DomainData::Channels::Guid::Player> {};

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping

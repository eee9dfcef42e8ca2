#pragma once

// Conversions of the identifier leaves: identifiers travel as the `Guid` wire record (one text),
// channel identifiers as that text in the form "player:<server>:<channel>" or
// "recorder:<server>:<channel>", and load boundaries as a type and a one-of value.

#include <type_traits>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/Channels/LoadBoundary.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Channels_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Common_types.h>

#include "converters/FieldMapping.h"

namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping {

namespace DomainData = ::Korvo::Plexis::Data;
namespace WireData = ::Korvo::Plexis::Data::Generated;
namespace WireChannels = ::Korvo::Plexis::Tessel::Serialization::Thrift::Data::Channels::Generated;

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

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping

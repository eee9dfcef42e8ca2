#pragma once

// The bodies of ToThriftConverter and FromThriftConverter, included only by the files that
// instantiate them for the protocol's record pairs.

#include <type_traits>
#include <utility>

#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/RecordConverters.h>

#include "converters/Leaves.h"

namespace Korvo::Plexis::Tessel::Serialization::Thrift {

/// The name a failure message gives a record pair; specialised where the pair is instantiated.
template <class Domain>
struct RecordName;

template <class Domain, class Wire>
Common::Serialization::ConversionResult ToThriftConverter<Domain, Wire>::To(const Domain& source,
                                                                            Wire& target) const {
    if constexpr (std::is_base_of_v<HighLevelOperations::Commands::CommandParams, Domain>) {
        if (source.commandGuid.IsEmpty()) {
            return Common::Serialization::ConversionResult::Failure(
                std::string(RecordName<Domain>::value) +
                ".commandGuid: the command identifier is empty; every command needs one, since "
                "the server echoes it in its reply");
        }
    }
    return Mapping::Prefixed(RecordName<Domain>::value, Mapping::ToWire(source, target));
}

template <class Domain, class Wire>
Common::Serialization::ConversionResult ToThriftConverter<Domain, Wire>::To(Domain&& source,
                                                                            Wire& target) const {
    return To(static_cast<const Domain&>(source), target);
}

template <class Wire, class Domain>
Common::Serialization::ConversionResult FromThriftConverter<Wire, Domain>::To(
    const Wire& source, Domain& target) const {
    return Mapping::Prefixed(RecordName<Domain>::value, Mapping::FromWire(source, target));
}

template <class Wire, class Domain>
Common::Serialization::ConversionResult FromThriftConverter<Wire, Domain>::To(
    Wire&& source, Domain& target) const {
    return Mapping::Prefixed(RecordName<Domain>::value,
                             Mapping::FromWire(std::move(source), target));
}

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift

/// Instantiates both converters of one record pair and names it for failure messages.
#define KORVO_INSTANTIATE_CONVERTERS(DomainType, WireType, Name) \
    template <>                                                  \
    struct RecordName<DomainType> {                              \
        static constexpr const char* value = Name;               \
    };                                                           \
    template class ToThriftConverter<DomainType, WireType>;      \
    template class FromThriftConverter<WireType, DomainType>;

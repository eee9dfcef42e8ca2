#pragma once

#include <Korvo/Common/Serialization/ConversionResult.h>
#include <Korvo/Common/Serialization/Converter.h>

namespace Korvo::Plexis::Tessel::Serialization::Thrift {

/// Converts a domain object into its wire record, field by field. Stateless and thread-safe.
///
/// A conversion fails, with a message that names the record and the field path, when:
/// - a command's own identifier (`commandGuid`) is empty: every command needs one, since the
///   server echoes it in its reply;
/// - a channel identifier is undefined where a player or a recorder must be named;
/// - a load boundary is both absolute and relative;
/// - a `ChannelCommandReply` claims more used results than it holds.
/// Instantiated for every record pair of the protocol (see Commands/Converters.h).
template <class Domain, class Wire>
class ToThriftConverter final : public Common::Serialization::Converter<Domain, Wire> {
public:
    Common::Serialization::ConversionResult To(const Domain& source, Wire& target) const override;
    Common::Serialization::ConversionResult To(Domain&& source, Wire& target) const override;
};

/// Converts a wire record into its domain object, field by field. Stateless and thread-safe.
///
/// A conversion fails, with a message that names the record and the field path, when:
/// - a channel identifier is not of the form "player:<server>:<channel>" or
///   "recorder:<server>:<channel>" (the empty text is accepted as the undefined channel);
/// - a `ChannelCommandReply` carries more results than its 12 entries hold.
/// Fields absent from the wire keep the domain object's defaults.
template <class Wire, class Domain>
class FromThriftConverter final : public Common::Serialization::Converter<Wire, Domain> {
public:
    Common::Serialization::ConversionResult To(const Wire& source, Domain& target) const override;
    Common::Serialization::ConversionResult To(Wire&& source, Domain& target) const override;
};

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift

#pragma once

// The machinery shared by the payload and reply builders: a builder is an ordered table of names,
// compared exactly, each row pointing at one instantiation of an encoding or decoding template.

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>

#include <Korvo/Common/Serialization/Deserializer.h>
#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Common/Serialization/InvalidConversionException.h>
#include <Korvo/Common/Serialization/InvalidFormatException.h>
#include <Korvo/Common/Serialization/Serializer.h>
#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/Client/BaseMessage.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::Client::Tables {

using Common::Serialization::Buffer;
using HighLevelOperations::Commands::CommandParams;
using HighLevelOperations::Commands::CommandReply;

/// One command of a payload builder: its name and how to encode its parameters.
struct PayloadRow {
    const char* name;
    std::unique_ptr<Buffer> (*encode)(const CommandParams& params);
};

/// Converts the parameters (of the row's class, not checked) into the wire record and encodes it.
template <class Domain, class Wire, class Converter>
std::unique_ptr<Buffer> Encode(const CommandParams& params) {
    using namespace Common::Serialization;
    return Serializer<SerializerImpl<Wire>, Domain, Converter>().Serialize(
        static_cast<const Domain&>(params));
}

/// The row named `commandName`, compared in table order; throws "Unknown command type.".
template <std::size_t Count>
std::unique_ptr<Buffer> BuildPayload(const PayloadRow (&rows)[Count],
                                     const std::string& commandName, const CommandParams& params) {
    for (const PayloadRow& row : rows) {
        if (commandName == row.name) {
            return row.encode(params);
        }
    }
    throw std::invalid_argument("Unknown command type.");
}

/// One reply type of a reply builder: its name, whether the "[part]" prefix may precede it, and
/// how to decode it. `source` is the builder's source location, for located messages.
struct ReplyRow {
    const char* name;
    bool acceptsPart;
    std::unique_ptr<CommandReply> (*decode)(const Buffer& buffer, const char* source);
};

/// Decodes `buffer` into a new `Reply` through the deserializer `Deser`. A null buffer, bytes
/// that do not parse and a failed conversion all become `std::invalid_argument`; the half-built
/// reply is released on every failure.
template <class Reply, class Deser>
std::unique_ptr<CommandReply> ThriftBufferToResponse(const Buffer& buffer, const char* source) {
    if (buffer.Pointer() == nullptr) {
        throw std::invalid_argument(
            std::string(source) +
            ":ThriftBufferToResponse: The response object is not valid - null buffer.");
    }
    auto reply = std::make_unique<Reply>(Data::Guid::Empty());
    std::string failure;
    try {
        Deser().Deserialize(buffer, *reply);
        return reply;
    } catch (const Common::Serialization::InvalidFormatException& error) {
        failure = error.what();
    } catch (const Common::Serialization::InvalidConversionException& error) {
        failure = error.what();
    }
    throw std::invalid_argument(failure);
}

/// The decoding row of one reply: its wire record `Wire` and converter `Converter`.
template <class Reply, class Wire, class Converter>
std::unique_ptr<CommandReply> Decode(const Buffer& buffer, const char* source) {
    using namespace Common::Serialization;
    return ThriftBufferToResponse<Reply, Deserializer<DeserializerImpl<Wire>, Reply, Converter>>(
        buffer, source);
}

/// Whether `replyType` names `row`, with the "[part]" prefix where the row accepts it.
inline bool Names(const ReplyRow& row, const std::string& replyType) {
    if (replyType == row.name) {
        return true;
    }
    constexpr std::size_t prefix = sizeof kPartialReplyPrefix - 1;
    return row.acceptsPart && IsPartialReplyHeader(replyType) &&
           replyType.compare(prefix, std::string::npos, row.name) == 0;
}

/// Decodes with the first row that `replyType` names; throws the located "Unknown command type."
template <std::size_t Count>
std::unique_ptr<CommandReply> BuildReply(const ReplyRow (&rows)[Count], const char* source,
                                         const std::string& replyType, const Buffer& buffer) {
    for (const ReplyRow& row : rows) {
        if (Names(row, replyType)) {
            return row.decode(buffer, source);
        }
    }
    throw std::invalid_argument(std::string(source) + ":BuildCommandReply: Unknown command type.");
}

}  // namespace Korvo::Plexis::Tessel::Client::Tables

#pragma once

// The machinery shared by the payload and reply builders: a builder is an ordered table of names,
// compared exactly, each row pointing at one instantiation of an encoding or decoding template.
// The rows of each family are derived from the tables of `CommandTypes.h`, in their order.

#include <array>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

#include <Korvo/Common/Serialization/Deserializer.h>
#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Common/Serialization/InvalidConversionException.h>
#include <Korvo/Common/Serialization/InvalidFormatException.h>
#include <Korvo/Common/Serialization/Serializer.h>
#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/Client/BaseMessage.h>
#include <Korvo/Plexis/Tessel/Client/CommandTypes.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>

namespace Korvo::Plexis::Tessel::Client::Tables {

using Common::Serialization::Buffer;
using HighLevelOperations::Commands::CommandParams;
using HighLevelOperations::Commands::CommandReply;

/// One command of a payload builder: its name and how to encode its parameters.
struct PayloadRow {
    std::string_view name;
    std::unique_ptr<Buffer> (*encode)(const CommandParams& params);
};

/// The name of the class of `params` for messages: its parameters class's name when it is one
/// of the tables, otherwise the implementation's name of its type.
std::string ClassNameOf(const CommandParams& params);

/// Converts `params` into the wire record of `Params` and encodes it. Parameters of another
/// class are refused with `std::invalid_argument` naming the command and both classes.
template <class Params>
std::unique_ptr<Buffer> Encode(const CommandParams& params) {
    using namespace Common::Serialization;
    using Traits = CommandTraits<Params>;
    using Wire = Serialization::Thrift::Commands::WireOf<Params>;
    const auto* typed = dynamic_cast<const Params*>(&params);
    if (typed == nullptr) {
        throw std::invalid_argument(std::string(Traits::kName) + " takes " +
                                    std::string(Traits::kClassName) + ", not " +
                                    ClassNameOf(params));
    }
    return Serializer<SerializerImpl<typename Wire::Record>, Params, typename Wire::ToThrift>()
        .Serialize(*typed);
}

/// The payload rows of `family`, in table order.
template <CommandFamily family>
constexpr auto PayloadRows() {
    constexpr std::size_t count = [] {
        std::size_t n = 0;
        ForEachCommand([&](auto* params) {
            n += CommandTraits<std::remove_pointer_t<decltype(params)>>::kFamily == family;
        });
        return n;
    }();
    std::array<PayloadRow, count> rows{};
    std::size_t next = 0;
    ForEachCommand([&](auto* params) {
        using Params = std::remove_pointer_t<decltype(params)>;
        if (CommandTraits<Params>::kFamily == family) {
            rows[next++] = {CommandTraits<Params>::kName, &Encode<Params>};
        }
    });
    return rows;
}

/// The row named `commandName`, compared in table order; throws "Unknown command type.".
template <std::size_t Count>
std::unique_ptr<Buffer> BuildPayload(const std::array<PayloadRow, Count>& rows,
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
    std::string_view name;
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

/// The decoding row of one reply class, through its wire record and converter.
template <class Reply>
std::unique_ptr<CommandReply> Decode(const Buffer& buffer, const char* source) {
    using namespace Common::Serialization;
    using Wire = Serialization::Thrift::Commands::WireOf<Reply>;
    return ThriftBufferToResponse<
        Reply, Deserializer<DeserializerImpl<typename Wire::Record>, Reply, typename Wire::FromThrift>>(
        buffer, source);
}

/// The reply rows of the builders of `family`, in table order.
template <CommandFamily family>
constexpr auto ReplyRows() {
    constexpr std::size_t count = [] {
        std::size_t n = 0;
        ForEachReply([&](auto* reply) {
            n += Receives(family, ReplyTraits<std::remove_pointer_t<decltype(reply)>>::kFamilies);
        });
        return n;
    }();
    std::array<ReplyRow, count> rows{};
    std::size_t next = 0;
    ForEachReply([&](auto* reply) {
        using Reply = std::remove_pointer_t<decltype(reply)>;
        using Traits = ReplyTraits<Reply>;
        if (Receives(family, Traits::kFamilies)) {
            rows[next++] = {Traits::kName, Traits::kAcceptsPart, &Decode<Reply>};
        }
    });
    return rows;
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
std::unique_ptr<CommandReply> BuildReply(const std::array<ReplyRow, Count>& rows, const char* source,
                                         const std::string& replyType, const Buffer& buffer) {
    for (const ReplyRow& row : rows) {
        if (Names(row, replyType)) {
            return row.decode(buffer, source);
        }
    }
    throw std::invalid_argument(std::string(source) + ":BuildCommandReply: Unknown command type.");
}

}  // namespace Korvo::Plexis::Tessel::Client::Tables

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

#include <Korvo/Common/Serialization/PointerBuffer.h>
#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Tessel/Client/ChannelCommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/Client/CommandTypes.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>

#include "support/Samples.h"

namespace Korvo::Testing {
namespace {

using namespace Plexis::Tessel::HighLevelOperations::Commands;
using Common::Serialization::Buffer;
using Common::Serialization::PointerBuffer;
using Plexis::Data::Guid;
using ChannelGuid = Plexis::Data::Channels::Guid;
using namespace Plexis::Tessel::Client;
namespace Wire = Plexis::Tessel::Serialization::Thrift::Commands::Generated;
namespace Converters = Plexis::Tessel::Serialization::Thrift::Commands;

constexpr char kChannelSource[] = "Korvo/Plexis/Tessel/Client/ChannelCommandReplyBuilder";
constexpr char kDataSource[] = "Korvo/Plexis/Tessel/Client/DataCommandReplyBuilder";

std::unique_ptr<Buffer> Bytes(const std::string& bytes) {
    auto* copy = static_cast<unsigned char*>(std::malloc(bytes.size() + 1));
    std::memcpy(copy, bytes.data(), bytes.size());
    return PointerBuffer::AdoptMalloced(copy, static_cast<unsigned int>(bytes.size()));
}

std::string FailureOf(CommandReplyBuilder& builder, const std::string& type, const Buffer& bytes) {
    try {
        builder.BuildCommandReply(type, bytes);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "(built)";
}

// Every reply of the table, with every field set and encoded as a server would: each builder of
// a family that receives it builds it back whole as its class under its type name (and under
// "[part]" where the row accepts parts); any other builder, and a refused prefix, name an unknown
// type. The type codes callers switch on are all distinct.
TEST(ReplyBuilders, EveryReplyIsBuiltByItsFamiliesUnderItsTypeName) {
    ChannelCommandReplyBuilder channels;
    DataCommandReplyBuilder data;
    const std::pair<CommandFamily, CommandReplyBuilder*> builders[] = {
        {CommandFamily::Channel, &channels}, {CommandFamily::Data, &data}};
    std::set<int> codes;
    ForEachReply([&](auto* type) {
        using Reply = std::remove_pointer_t<decltype(type)>;
        using Traits = ReplyTraits<Reply>;
        using Wire = Converters::WireOf<Reply>;
        const std::string name(Traits::kName);
        auto reply = Samples::Filled<Reply>();
        typename Wire::Record record;
        ASSERT_TRUE(typename Wire::ToThrift().To(reply, record).success) << name;
        const auto bytes = Common::Serialization::SerializerImpl<typename Wire::Record>().Serialize(
            record);
        if constexpr (std::is_same_v<Reply, UnknownCommandReply>) {
            reply.commandGuid = Guid::Empty();  // its record carries no command identifier
        }
        EXPECT_TRUE(codes.insert(Reply::kType).second) << name << " shares its code";

        for (const auto& [family, builder] : builders) {
            const std::string unknown =
                std::string(family == CommandFamily::Channel ? kChannelSource : kDataSource) +
                ":BuildCommandReply: Unknown command type.";
            if (!Receives(family, Traits::kFamilies)) {
                EXPECT_EQ(FailureOf(*builder, name, *bytes), unknown);
                continue;
            }
            for (const std::string& header : {name, "[part]" + name}) {
                if (header != name && !Traits::kAcceptsPart) {
                    EXPECT_EQ(FailureOf(*builder, header, *bytes), unknown);
                    continue;
                }
                const auto built = builder->BuildCommandReply(header, *bytes);
                EXPECT_EQ(built->GetType(), Reply::kType) << header;
                const auto* typed = dynamic_cast<const Reply*>(built.get());
                ASSERT_NE(typed, nullptr) << header;
                EXPECT_TRUE(*typed == reply) << header << " did not survive the round trip";
            }
        }
    });
}

TEST(ReplyBuilders, UnknownNamesAreRefusedWithTheBuildersLocation) {
    ChannelCommandReplyBuilder channels;
    DataCommandReplyBuilder data;
    const auto stopOnly = Bytes(std::string(1, '\0'));
    const std::string channelUnknown =
        std::string(kChannelSource) + ":BuildCommandReply: Unknown command type.";
    const std::string dataUnknown =
        std::string(kDataSource) + ":BuildCommandReply: Unknown command type.";
    for (const char* type : {"UnknownCommandReply", "successreply", "SuccessReply ", "", "[part]",
                             "[part][part]ChannelCommandReply"}) {
        EXPECT_EQ(FailureOf(channels, type, *stopOnly), channelUnknown) << type;
        EXPECT_EQ(FailureOf(data, type, *stopOnly), dataUnknown) << type;
    }
    // The bare stop byte is a valid reply with nothing set.
    auto success = channels.BuildCommandReply("SuccessReply", *stopOnly);
    EXPECT_EQ(success->GetType(), 1);
    EXPECT_TRUE(success->commandGuid.IsEmpty());
}

TEST(ReplyBuilders, NullBufferIsRefusedAfterTheTypeIsKnown) {
    ChannelCommandReplyBuilder channels;
    DataCommandReplyBuilder data;
    PointerBuffer null(nullptr, 8);
    EXPECT_EQ(FailureOf(channels, "SuccessReply", null),
              std::string(kChannelSource) +
                  ":ThriftBufferToResponse: The response object is not valid - null buffer.");
    EXPECT_EQ(FailureOf(data, "GetClipsCommandReply", null),
              std::string(kDataSource) +
                  ":ThriftBufferToResponse: The response object is not valid - null buffer.");
    EXPECT_EQ(FailureOf(data, "Nonsense", null),
              std::string(kDataSource) + ":BuildCommandReply: Unknown command type.");
}

TEST(ReplyBuilders, UndecodableOrUnconvertibleBytesAreInvalidArguments) {
    ChannelCommandReplyBuilder channels;
    DataCommandReplyBuilder data;
    const std::string unparsable = "The input could not be parsed by the deserializer";

    EXPECT_EQ(FailureOf(channels, "ChannelCommandReply", *Bytes("\x19\xff")), unparsable);
    EXPECT_EQ(FailureOf(data, "ClipCommandReply", *Bytes("")), unparsable);

    // GetMultiviewerDataCommandReply requires all three fields: the empty map present on the
    // wire is enough, its absence is not.
    const std::string guidAndStatus("\x1c\x00\x1c\x00", 4);
    EXPECT_EQ(FailureOf(channels, "GetMultiviewerDataCommandReply",
                        *Bytes(guidAndStatus + std::string("\x1b\x00\x00", 3))),
              "(built)");
    EXPECT_EQ(FailureOf(channels, "GetMultiviewerDataCommandReply",
                        *Bytes(guidAndStatus + std::string(1, '\0'))),
              unparsable);

    // An angles group lacking its required map spoils the whole listing.
    EXPECT_EQ(FailureOf(data, "GetAnglesGroupsCommandReply",
                        *Bytes(std::string("\x39\x1c\x1c\x00\x00\x00", 6))),
              unparsable);

    // Thirteen channel results do not fit the reply's twelve entries.
    Wire::ChannelCommandReply crowded;
    crowded.__isset.results = true;
    crowded.results.resize(13);
    auto tooMany =
        Common::Serialization::SerializerImpl<Wire::ChannelCommandReply>().Serialize(crowded);
    EXPECT_EQ(FailureOf(channels, "ChannelCommandReply", *tooMany),
              "ChannelCommandReply: the server sent 13 channel results; a ChannelCommandReply "
              "holds at most 12");
}

// The channel identifiers a server may send: ours, ours spelt with a leading zero, a UUID. Each
// reply that carries channels is built whole, keeps the identifiers apart and encodes them back
// exactly as they came.
template <class Reply, class Fill, class Read>
void ExpectChannelTextsKept(const std::set<std::string>& texts, Fill fill, Read read) {
    using Wire = Converters::WireOf<Reply>;
    typename Wire::Record record;
    for (const std::string& text : texts) {
        Plexis::Data::Generated::Guid channel;
        channel.value = text;
        fill(record, channel);
    }
    const auto built = ChannelCommandReplyBuilder().BuildCommandReply(
        std::string(ReplyTraits<Reply>::kName),
        *Common::Serialization::SerializerImpl<typename Wire::Record>().Serialize(record));
    typename Wire::Record back;
    ASSERT_TRUE(typename Wire::ToThrift().To(dynamic_cast<const Reply&>(*built), back).success);
    EXPECT_EQ(read(back), texts) << ReplyTraits<Reply>::kName;
}

TEST(ReplyBuilders, ChannelIdentifiersOfAnyFormAreKeptApartAndGoBackUnchanged) {
    const std::set<std::string> texts = {"player:1:0", "player:01:0",
                                         "6f1c2a4e-0b7d-4c1e-9a53-2d8e5f4b7c10"};
    const auto keys = [](const auto& map) {
        std::set<std::string> found;
        for (const auto& entry : map) {
            found.insert(entry.first.value);
        }
        return found;
    };
    ExpectChannelTextsKept<ChannelCommandReply>(
        texts,
        [](auto& record, const auto& channel) {
            record.__isset.results = true;
            record.results.emplace_back().__set_channelGuid(channel);
        },
        [](const auto& record) {
            std::set<std::string> found;
            for (const auto& result : record.results) {
                found.insert(result.channelGuid.value);
            }
            return found;
        });
    ExpectChannelTextsKept<GetChannelsCommandReply>(
        texts,
        [](auto& record, const auto& channel) {
            record.__isset.playerStates = record.__isset.recorderStates = true;
            record.playerStates[channel];
            record.recorderStates[channel];
        },
        [&](const auto& record) {
            EXPECT_EQ(keys(record.recorderStates), keys(record.playerStates));
            return keys(record.playerStates);
        });
    ExpectChannelTextsKept<GetMultiviewerDataCommandReply>(
        texts,
        [](auto& record, const auto& channel) {
            record.playerDataOverrides[channel].playerGuid = channel;
        },
        [&](const auto& record) { return keys(record.playerDataOverrides); });
}

}  // namespace
}  // namespace Korvo::Testing

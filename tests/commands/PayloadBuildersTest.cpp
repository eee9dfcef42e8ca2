#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <type_traits>

#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Common/Serialization/InvalidConversionException.h>
#include <Korvo/Common/Serialization/Serializer.h>
#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Tessel/Client/ChannelsCommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/CommandTypes.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>

#include "support/Samples.h"

namespace Korvo::Testing {
namespace {

using namespace Plexis::Tessel::HighLevelOperations::Commands;
using namespace Plexis::Tessel::Client;
using Plexis::Data::Guid;
namespace Thrift = Plexis::Tessel::Serialization::Thrift::Commands;

// What `BuildPayload` threw, or "(built)".
std::string FailureOf(CommandParamsPayloadBuilder& builder, const std::string& name,
                      const CommandParams& params) {
    try {
        builder.BuildPayload(name, params);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "(built)";
}

struct NotACommand : CommandParams {};

// Every command of the table, with every field set: its family's builder encodes it into its
// record, which decodes back to the same parameters; the other family's builder does not know
// its name; and parameters of any other class are refused by name, not cast.
TEST(PayloadBuilders, EveryCommandEncodesThroughItsFamilyAndRefusesOtherClasses) {
    ChannelsCommandParamsPayloadBuilder channels;
    DataCommandParamsPayloadBuilder data;
    ForEachCommand([&](auto* type) {
        using Params = std::remove_pointer_t<decltype(type)>;
        using Traits = CommandTraits<Params>;
        using Wire = Thrift::WireOf<Params>;
        using Other = std::conditional_t<std::is_same_v<Params, PingCommandParams>,
                                         LoadClipsCommandParams, PingCommandParams>;
        const std::string name(Traits::kName);
        auto& own = Traits::kFamily == CommandFamily::Channel
                        ? static_cast<CommandParamsPayloadBuilder&>(channels)
                        : static_cast<CommandParamsPayloadBuilder&>(data);
        auto& other = &own == &channels ? static_cast<CommandParamsPayloadBuilder&>(data)
                                        : static_cast<CommandParamsPayloadBuilder&>(channels);
        const auto params = Samples::Filled<Params>();

        typename Wire::Record record;
        Common::Serialization::DeserializerImpl<typename Wire::Record>().Deserialize(
            *own.BuildPayload(name, params), record);
        Params back;
        const auto result = typename Wire::FromThrift().To(record, back);
        EXPECT_TRUE(result.success) << name << ": " << result.message;
        EXPECT_TRUE(back == params) << name << " did not survive the round trip";

        EXPECT_EQ(FailureOf(other, name, params), "Unknown command type.") << name;
        EXPECT_EQ(FailureOf(own, name, Samples::Filled<Other>()),
                  name + " takes " + std::string(Traits::kClassName) + ", not " +
                      std::string(CommandTraits<Other>::kClassName));
        EXPECT_EQ(FailureOf(own, name, NotACommand()).rfind(name + " takes ", 0), 0u) << name;
    });
}

TEST(PayloadBuilders, NamesAreComparedExactly) {
    ChannelsCommandParamsPayloadBuilder channels;
    DataCommandParamsPayloadBuilder data;
    PlayCommandParams play;
    PingCommandParams ping;
    for (const char* name : {"playCommand", "PlayCommand ", "", "PlayCommandParams"}) {
        EXPECT_EQ(FailureOf(channels, name, play), "Unknown command type.") << name;
    }
    for (const char* name : {"GetAnglesGroupCommand", "DeleteAnglesGroupsCommand", "pingcommand"}) {
        EXPECT_EQ(FailureOf(data, name, ping), "Unknown command type.") << name;
    }
}

// An optional the caller left unset stays off the wire instead of travelling as a default.
TEST(PayloadBuilders, UnsetOptionalsStayUnset) {
    DataCommandParamsPayloadBuilder data;
    GetPlaylistsCommandParams playlists;
    playlists.commandGuid = Guid("playlists-1");
    Thrift::Generated::GetPlaylistsCommandParams listing;
    Common::Serialization::DeserializerImpl<Thrift::Generated::GetPlaylistsCommandParams>()
        .Deserialize(*data.BuildPayload("GetPlaylistsCommand", playlists), listing);
    EXPECT_FALSE(listing.__isset.idFilter);

    UpdateAnglesGroupCommandParams group;
    group.commandGuid = Guid("group-1");
    Thrift::Generated::UpdateAnglesGroupCommandParams update;
    Common::Serialization::DeserializerImpl<Thrift::Generated::UpdateAnglesGroupCommandParams>()
        .Deserialize(*data.BuildPayload("UpdateAnglesGroupCommand", group), update);
    EXPECT_FALSE(update.__isset.primaryAngle || update.__isset.secondaryAngle);
}

TEST(PayloadBuilders, ConversionFailuresNameTheRecordAndField) {
    ChannelsCommandParamsPayloadBuilder builder;
    try {
        builder.BuildPayload("PlayCommand", PlayCommandParams());
        ADD_FAILURE() << "a command without identifier was encoded";
    } catch (const Common::Serialization::InvalidConversionException& error) {
        EXPECT_EQ(std::string(error.what()).rfind("PlayCommandParams.commandGuid: ", 0), 0u)
            << error.what();
    }
}

}  // namespace
}  // namespace Korvo::Testing

namespace Korvo::Testing {
namespace {

// The serializer keeps its wire record from one call to the next: a payload must carry nothing
// of the one before, whether a list got shorter or an optional field went unset.
template <class D, class W>
void ExpectNothingCarriedOver(const D& first, const D& second) {
    using namespace Common::Serialization;
    using Encode = Plexis::Tessel::Serialization::Thrift::ToThriftConverter<D, W>;
    Serializer<SerializerImpl<W>, D, Encode> serializer;
    serializer.Serialize(first);
    const auto reused = serializer.Serialize(second);
    W fresh;
    ASSERT_TRUE(Encode().To(second, fresh).success);
    const auto expected = SerializerImpl<W>().Serialize(fresh);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(reused->Pointer()), reused->Size()),
              std::string(reinterpret_cast<const char*>(expected->Pointer()), expected->Size()));
}

TEST(Serializer, APayloadCarriesNothingOfThePreviousOne) {
    auto fewer = Samples::Filled<CreateClipsCommandParams>(2);
    fewer.clips.resize(1);
    fewer.clips[0].clip = Plexis::Data::Clips::Clip();
    namespace Wire = Plexis::Tessel::Serialization::Thrift::Commands::Generated;
    ExpectNothingCarriedOver<CreateClipsCommandParams, Wire::CreateClipsCommandParams>(
        Samples::Filled<CreateClipsCommandParams>(1), fewer);
    ExpectNothingCarriedOver<UpdateAnglesGroupCommandParams, Wire::UpdateAnglesGroupCommandParams>(
        Samples::Filled<UpdateAnglesGroupCommandParams>(1),
        [] {
            UpdateAnglesGroupCommandParams unset;
            unset.commandGuid = Guid("unset-angles");
            return unset;
        }());
}

}  // namespace
}  // namespace Korvo::Testing

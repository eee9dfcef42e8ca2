#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>

#include <Korvo/Common/Serialization/PointerBuffer.h>
#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Tessel/Client/ChannelCommandReplyBuilder.h>
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
using Plexis::Tessel::Client::ChannelCommandReplyBuilder;
using Plexis::Tessel::Client::CommandReplyBuilder;
using Plexis::Tessel::Client::DataCommandReplyBuilder;
namespace Wire = Plexis::Tessel::Serialization::Thrift::Commands::Generated;
namespace Converters = Plexis::Tessel::Serialization::Thrift::Commands;

constexpr char kChannelSource[] = "Korvo/Plexis/Tessel/Client/ChannelCommandReplyBuilder";
constexpr char kDataSource[] = "Korvo/Plexis/Tessel/Client/DataCommandReplyBuilder";

// The bytes a server sends for `reply`: encoded with the reply's own encoding converter.
template <class W, class Encoder, class Reply>
std::unique_ptr<Buffer> Encoded(const Reply& reply) {
    W wire;
    const auto result = Encoder().To(reply, wire);
    EXPECT_TRUE(result.success) << result.message;
    return Common::Serialization::SerializerImpl<W>().Serialize(wire);
}

std::unique_ptr<Buffer> Bytes(const std::string& bytes) {
    auto* copy = static_cast<unsigned char*>(std::malloc(bytes.size() + 1));
    std::memcpy(copy, bytes.data(), bytes.size());
    return PointerBuffer::AdoptMalloced(copy, static_cast<unsigned int>(bytes.size()));
}

// Builds `type` from the encoding of `reply` and expects the same reply, of the same class.
template <class W, class Encoder, class Reply>
void ExpectBuilt(CommandReplyBuilder& builder, const std::string& type, const Reply& reply) {
    auto built = builder.BuildCommandReply(type, *Encoded<W, Encoder>(reply));
    ASSERT_NE(built, nullptr);
    EXPECT_EQ(built->GetType(), Reply::kType) << type;
    auto* typed = dynamic_cast<Reply*>(built.get());
    ASSERT_NE(typed, nullptr) << type;
    EXPECT_TRUE(*typed == reply) << type << " did not survive the round trip";
}

std::string FailureOf(CommandReplyBuilder& builder, const std::string& type, const Buffer& bytes) {
    try {
        builder.BuildCommandReply(type, bytes);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "(built)";
}

TEST(ReplyTypes, CodesAreFixedAndDistinct) {
    EXPECT_EQ(UnknownCommandReply::kType, 0);
    EXPECT_EQ(SuccessReply::kType, 1);
    EXPECT_EQ(FailureReply::kType, 2);
    EXPECT_EQ(ClipCommandReply::kType, 3);
    EXPECT_EQ(AnglesGroupCommandReply::kType, 4);
    EXPECT_EQ(PlaylistCommandReply::kType, 5);
    EXPECT_EQ(ChannelCommandReply::kType, 6);
    EXPECT_EQ(GetChannelsCommandReply::kType, 7);
    EXPECT_EQ(GetTrainsCommandReply::kType, 9);
    EXPECT_EQ(GetServersCommandReply::kType, 12);
    EXPECT_EQ(GetMultiviewerDataCommandReply::kType, 13);
    const int open[] = {GetClipsCommandReply::kType, GetPlaylistsCommandReply::kType,
                        GetAnglesGroupsCommandReply::kType};
    for (int code : open) {
        for (int taken : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}) {
            EXPECT_NE(code, taken);
        }
    }
}

TEST(ChannelCommandReplyBuilder, EveryReplyTypeIsBuiltWithItsFields) {
    ChannelCommandReplyBuilder builder;
    const Guid id("cmd-1");

    ExpectBuilt<Wire::SuccessReply, Converters::SuccessReplyToThriftConverter>(
        builder, "SuccessReply", SuccessReply(id));
    FailureReply failure(id);
    failure.message = "player busy";
    ExpectBuilt<Wire::FailureReply, Converters::FailureReplyToThriftConverter>(
        builder, "FailureReply", failure);
    UnknownCommandReply unknown;  // the record carries no command identifier
    unknown.message = "no such command";
    ExpectBuilt<Wire::UnknownCommandReply, Converters::UnknownCommandReplyToThriftConverter>(
        builder, "UnknownCommand", unknown);

    ChannelCommandReply channels(id);
    channels.Add({ChannelGuid::PlayerOf(1, 0), Samples::Status(1)});
    channels.Add({ChannelGuid::RecorderOf(1, 2), Samples::Status(2)});
    for (const char* type : {"ChannelCommandReply", "[part]ChannelCommandReply"}) {
        ExpectBuilt<Wire::ChannelCommandReply, Converters::ChannelCommandReplyToThriftConverter>(
            builder, type, channels);
    }

    GetChannelsCommandReply states(id);
    states.playerStates[ChannelGuid::PlayerOf(1, 0)] = Samples::PlayerState(1);
    states.playerStates[ChannelGuid::PlayerOf(1, 1)] = Samples::PlayerState(2);
    states.recorderStates[ChannelGuid::RecorderOf(1, 0)] = Samples::RecorderState(3);
    ExpectBuilt<Wire::GetChannelsCommandReply,
                Converters::GetChannelsCommandReplyToThriftConverter>(
        builder, "GetChannelsCommandReply", states);

    GetMultiviewerDataCommandReply multiviewer(id);
    multiviewer.playerDataOverrides[ChannelGuid::PlayerOf(1, 0)] =
        Samples::Overrides(ChannelGuid::PlayerOf(1, 0));
    multiviewer.status = Samples::Status(4);
    ExpectBuilt<Wire::GetMultiviewerDataCommandReply,
                Converters::GetMultiviewerDataCommandReplyToThriftConverter>(
        builder, "GetMultiviewerDataCommandReply", multiviewer);
}

TEST(DataCommandReplyBuilder, EveryReplyTypeIsBuiltWithItsFields) {
    DataCommandReplyBuilder builder;
    const Guid id("cmd-2");

    ExpectBuilt<Wire::SuccessReply, Converters::SuccessReplyToThriftConverter>(
        builder, "SuccessReply", SuccessReply(id));

    ClipCommandReply clips(id);
    clips.results = {{Samples::Status(1), Samples::Clip(1)},
                     {Samples::Status(2), Samples::Clip(2)}};
    PlaylistCommandReply playlists(id);
    playlists.results = {{Samples::Status(3), Samples::Playlist(1)}};
    GetClipsCommandReply listing(id);
    listing.marker = 42;
    listing.clips = {Samples::Clip(3), Samples::Clip(4)};
    GetAnglesGroupsCommandReply groups(id);
    groups.marker = 7;
    groups.anglesGroups = {Samples::AnglesGroup(1), Samples::AnglesGroup(2)};
    AnglesGroupCommandReply group(id);
    group.groupGuid = Plexis::Data::Clips::Groups::Guid("group-1");
    group.status = Samples::Status(5);
    group.clipCommandReply = clips;
    group.clipCommandReply.commandGuid = Guid("nested");
    for (const std::string prefix : {"", "[part]"}) {
        ExpectBuilt<Wire::ClipCommandReply, Converters::ClipCommandReplyToThriftConverter>(
            builder, prefix + "ClipCommandReply", clips);
        ExpectBuilt<Wire::PlaylistCommandReply, Converters::PlaylistCommandReplyToThriftConverter>(
            builder, prefix + "PlaylistCommandReply", playlists);
        ExpectBuilt<Wire::GetClipsCommandReply, Converters::GetClipsCommandReplyToThriftConverter>(
            builder, prefix + "GetClipsCommandReply", listing);
        ExpectBuilt<Wire::GetAnglesGroupsCommandReply,
                    Converters::GetAnglesGroupsCommandReplyToThriftConverter>(
            builder, prefix + "GetAnglesGroupsCommandReply", groups);
        ExpectBuilt<Wire::AnglesGroupCommandReply,
                    Converters::AnglesGroupCommandReplyToThriftConverter>(
            builder, prefix + "AnglesGroupCommandReply", group);
    }

    GetTrainsCommandReply trains(id);
    trains.marker = -1;
    trains.trains = {Samples::Train(1)};
    ExpectBuilt<Wire::GetTrainsCommandReply, Converters::GetTrainsCommandReplyToThriftConverter>(
        builder, "GetTrainsCommandReply", trains);
    GetPlaylistsCommandReply playlistListing(id);
    playlistListing.playlists = {Samples::Playlist(5)};
    ExpectBuilt<Wire::GetPlaylistsCommandReply,
                Converters::GetPlaylistsCommandReplyToThriftConverter>(
        builder, "GetPlaylistsCommandReply", playlistListing);
    GetServersCommandReply servers(id);
    servers.servers = {Samples::Server(1), Samples::Server(2)};
    ExpectBuilt<Wire::GetServersCommandReply, Converters::GetServersCommandReplyToThriftConverter>(
        builder, "GetServersCommandReply", servers);
}

TEST(ReplyBuilders, UnknownNamesAreRefusedWithTheBuildersLocation) {
    ChannelCommandReplyBuilder channels;
    DataCommandReplyBuilder data;
    const auto stopOnly = Bytes(std::string(1, '\0'));
    const std::string channelUnknown =
        std::string(kChannelSource) + ":BuildCommandReply: Unknown command type.";
    const std::string dataUnknown =
        std::string(kDataSource) + ":BuildCommandReply: Unknown command type.";
    for (const char* type :
         {"UnknownCommandReply", "successreply", "SuccessReply ", "", "[part]SuccessReply",
          "[part]GetChannelsCommandReply", "ClipCommandReply"}) {
        EXPECT_EQ(FailureOf(channels, type, *stopOnly), channelUnknown) << type;
    }
    for (const char* type :
         {"ChannelCommandReply", "[part]GetTrainsCommandReply", "[part]GetServersCommandReply",
          "[part]GetPlaylistsCommandReply", "[part]FailureReply"}) {
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
TEST(ReplyBuilders, ChannelIdentifiersOfAnyFormAreKeptApartAndGoBackUnchanged) {
    const std::set<std::string> texts = {"player:1:0", "player:01:0",
                                         "6f1c2a4e-0b7d-4c1e-9a53-2d8e5f4b7c10"};
    ChannelCommandReplyBuilder builder;
    const auto keys = [](const auto& map) {
        std::set<std::string> found;
        for (const auto& entry : map) {
            found.insert(entry.first.value);
        }
        return found;
    };

    Wire::ChannelCommandReply results;
    Wire::GetChannelsCommandReply states;
    Wire::GetMultiviewerDataCommandReply overrides;
    for (const std::string& text : texts) {
        Plexis::Data::Generated::Guid channel;
        channel.value = text;
        Wire::ChannelResult result;
        result.__set_channelGuid(channel);
        results.results.push_back(result);
        states.playerStates[channel];
        states.recorderStates[channel];
        overrides.playerDataOverrides[channel].playerGuid = channel;
    }
    results.__isset.results = states.__isset.playerStates = states.__isset.recorderStates = true;

    const auto channelReply = builder.BuildCommandReply(
        "ChannelCommandReply",
        *Common::Serialization::SerializerImpl<Wire::ChannelCommandReply>().Serialize(results));
    Wire::ChannelCommandReply resultsBack;
    Converters::ChannelCommandReplyToThriftConverter().To(
        dynamic_cast<const ChannelCommandReply&>(*channelReply), resultsBack);
    std::set<std::string> resultTexts;
    for (const auto& result : resultsBack.results) {
        resultTexts.insert(result.channelGuid.value);
    }
    EXPECT_EQ(resultTexts, texts);

    const auto statesReply = builder.BuildCommandReply(
        "GetChannelsCommandReply",
        *Common::Serialization::SerializerImpl<Wire::GetChannelsCommandReply>().Serialize(states));
    Wire::GetChannelsCommandReply statesBack;
    Converters::GetChannelsCommandReplyToThriftConverter().To(
        dynamic_cast<const GetChannelsCommandReply&>(*statesReply), statesBack);
    EXPECT_EQ(keys(statesBack.playerStates), texts);
    EXPECT_EQ(keys(statesBack.recorderStates), texts);

    const auto overridesReply = builder.BuildCommandReply(
        "GetMultiviewerDataCommandReply",
        *Common::Serialization::SerializerImpl<Wire::GetMultiviewerDataCommandReply>().Serialize(
            overrides));
    Wire::GetMultiviewerDataCommandReply overridesBack;
    Converters::GetMultiviewerDataCommandReplyToThriftConverter().To(
        dynamic_cast<const GetMultiviewerDataCommandReply&>(*overridesReply), overridesBack);
    EXPECT_EQ(keys(overridesBack.playerDataOverrides), texts);
}

}  // namespace
}  // namespace Korvo::Testing

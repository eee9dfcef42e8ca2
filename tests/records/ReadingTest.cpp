// Reading records written by a server. The bytes are compact-protocol encodings written out by
// hand (see GoldenBytesTest.cpp for the rules).

#include <gtest/gtest.h>

#include <thrift/protocol/TProtocol.h>

#include <Korvo/Common/Serialization/InvalidFormatException.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Notifications.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Replies.h>

#include "RecordBytes.h"

namespace {

using namespace Korvo::Plexis::Tessel::Serialization::Thrift;
using namespace Korvo::Testing;
using apache::thrift::protocol::TProtocolException;
using Korvo::Plexis::Data::Generated::PlayerDataOverrides;
namespace Channels = Korvo::Plexis::Tessel::Serialization::Thrift::Data::Channels::Generated;
namespace Replies = Korvo::Plexis::Tessel::Serialization::Thrift::Commands::Generated;

const Bytes kGuidA = {0x18, 0x01, 'a', 0x00};  // a Guid struct body with value "a"

template <class Record>
void ExpectInvalidData(const Bytes& bytes) {
    try {
        ReadGenerated<Record>(bytes);
        ADD_FAILURE() << "accepted";
    } catch (const TProtocolException& error) {
        EXPECT_EQ(error.getType(), TProtocolException::INVALID_DATA);
    }
}

TEST(RecordReading, UnknownIdsAndMismatchedTypesAreSkipped) {
    // Field 1, then field 9 (delta 8, i32 1), unknown to the record.
    const auto overrides =
        ReadGenerated<PlayerDataOverrides>(Join({{0x1C}, kGuidA, {0x85, 0x02, 0x00}}));
    PlayerDataOverrides expected;
    expected.playerGuid.value = "a";
    EXPECT_EQ(overrides, expected);

    // results (field 2) sent as a set of one Guid, then field 1 in the long form (type, zigzag
    // id) since its delta is negative.
    const auto reply = ReadGenerated<Replies::ChannelCommandReply>(
        Join({{0x2A, 0x1C}, kGuidA, {0x0C, 0x02}, kGuidA, {0x00}}));
    EXPECT_FALSE(reply.__isset.results);
    EXPECT_EQ(reply.commandGuid.value, "a");

    // PlayerState field 7 as an i64, then field 8 whose position (field 2) is 2.
    const auto state =
        ReadGenerated<Channels::PlayerState>({0x76, 0x02, 0x1C, 0x26, 0x04, 0x00, 0x00});
    EXPECT_FALSE(state.__isset.currentClip);
    EXPECT_EQ(state.nextClip.position, 2);
}

TEST(RecordReading, MissingRequiredFieldIsInvalidDataAndAPresentEmptyMapIsNot) {
    ExpectInvalidData<PlayerDataOverrides>({0x26, 0x02, 0x00});  // only field 2
    // Fields 1 and 2 (status with code 0), no map; then the same with an empty map.
    const Bytes head = Join({{0x1C}, kGuidA, {0x1C, 0x15, 0x00, 0x00}});
    ExpectInvalidData<Replies::GetMultiviewerDataCommandReply>(Join({head, {0x00}}));
    EXPECT_TRUE(
        ReadGenerated<Replies::GetMultiviewerDataCommandReply>(Join({head, {0x1B, 0x00, 0x00}}))
            .playerDataOverrides.empty());
    // An angles-group deletion with its event and group but no revision (field 3).
    ExpectInvalidData<Notifier::Generated::AnglesGroupDeletionEventArgs>(
        Join({{0x1C, 0x00, 0x1C}, kGuidA, {0x00}}));
}

TEST(RecordReading, IncompleteAngleFailsTheWholeReplyThroughTheDeserializer) {
    // anglesGroups (field 3): one group whose angle 1 has its clip but no camera (field 2).
    const Bytes reply = Join(
        {{0x39, 0x1C, 0x1C}, kGuidA, {0x1B, 0x01, 0x5C, 0x02, 0x1C}, kGuidA, {0x00, 0x00, 0x00}});
    try {
        Deserialize<Replies::GetAnglesGroupsCommandReply>(reply);
        ADD_FAILURE() << "accepted";
    } catch (const Korvo::Common::Serialization::InvalidFormatException& error) {
        EXPECT_STREQ(error.what(), "The input could not be parsed by the deserializer");
    }
}

TEST(RecordReading, RepeatedMapKeyKeepsTheLastValueWhole) {
    // Each map holds key "a" twice: first with one field set, then with another. The value read
    // last replaces the first; nothing of the first survives.
    // playerStates (field 2): channelNumber (field 2) 1, then serverId (field 4) 2.
    const auto channels = ReadGenerated<Replies::GetChannelsCommandReply>(
        Join({{0x2B, 0x02, 0xCC}, kGuidA, {0x25, 0x02, 0x00}, kGuidA, {0x45, 0x04, 0x00, 0x00}}));
    ASSERT_EQ(channels.playerStates.size(), 1u);
    Channels::PlayerState player;
    player.__set_serverId(2);
    EXPECT_EQ(channels.playerStates.begin()->second, player);

    // playerDataOverrides (field 3, after fields 1 and 2): the first with clipCreationIn
    // (field 2) 1, the second with only its player.
    const auto overrides = Deserialize<Replies::GetMultiviewerDataCommandReply>(Join(
        {{0x1C}, kGuidA, {0x1C, 0x15, 0x00, 0x00, 0x1B, 0x02, 0xCC}, kGuidA, {0x1C}, kGuidA,
         {0x16, 0x02, 0x00}, kGuidA, {0x1C}, kGuidA, {0x00, 0x00}}));
    ASSERT_EQ(overrides.playerDataOverrides.size(), 1u);
    EXPECT_FALSE(overrides.playerDataOverrides.begin()->second.__isset.clipCreationIn);
}

TEST(RecordReading, UnknownFieldsAreSkippedInsideTheDeepestRecord) {
    // A playlist reply down to a tag property, the deepest record: results, playlist, track,
    // elements, element, tags, properties {7: {dataType 1, then unknown field 3 holding a
    // struct in a struct}}.
    const Bytes reply = {0x29, 0x1C, 0x2C, 0x1C, 0x19, 0x1C, 0x9C, 0xA9, 0x1C, 0x4B, 0x01,
                         0x5C, 0x0E, 0x15, 0x02, 0x2C, 0x1C, 0x00, 0x00, 0x00, 0x00, 0x00,
                         0x00, 0x00, 0x00, 0x00, 0x00, 0x00};
    const auto decoded = Deserialize<Replies::PlaylistCommandReply>(reply);
    const auto& tag =
        decoded.results.at(0).playlist.audioVideoTrack.elements.at(0).element.tags.at(0);
    EXPECT_EQ(tag.properties.at(7).dataType, 1);
}

TEST(RecordReading, AbsentOptionalsStayUnsetAndABooleanHeaderCarriesItsValue) {
    // Equal to a default record only when every set-flag is clear too.
    EXPECT_EQ(ReadGenerated<Replies::SuccessReply>({0x00}), Replies::SuccessReply());
    EXPECT_EQ(ReadGenerated<Channels::PlayerState>({0x00}), Channels::PlayerState());
    // 0x51: field 5, boolean true.
    const auto recorder = ReadGenerated<Channels::RecorderState>({0x51, 0x00});
    EXPECT_TRUE(recorder.__isset.isRecording && recorder.isRecording);
}

}  // namespace

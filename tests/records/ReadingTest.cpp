// Reading records written by a server: unknown and mistyped fields, required fields, repeated map
// keys, absent optionals. The bytes are compact-protocol encodings written out by hand (see
// GoldenBytesTest.cpp for the rules).

#include <gtest/gtest.h>

#include <thrift/protocol/TProtocol.h>

#include <Korvo/Common/Serialization/InvalidFormatException.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/AnglesGroups.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Channels.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Clips.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Common.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Notifications.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Replies.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Servers.h>

#include "RecordBytes.h"

namespace {

using namespace Korvo::Plexis::Tessel::Serialization::Thrift;
using apache::thrift::protocol::TProtocolException;
using Korvo::Plexis::Data::Clips::Groups::Generated::AnglesGroup;
using Korvo::Plexis::Data::Generated::PlayerDataOverrides;
using Korvo::Testing::Bytes;
using Korvo::Testing::Deserialize;
using Korvo::Testing::Join;
using Korvo::Testing::ReadGenerated;

Bytes GuidBody(char value) {
    return {0x18, 0x01, static_cast<std::uint8_t>(value), 0x00};
}

template <class Record>
void ExpectInvalidData(const Bytes& bytes, const char* what) {
    try {
        ReadGenerated<Record>(bytes);
        ADD_FAILURE() << what << ": accepted";
    } catch (const TProtocolException& error) {
        EXPECT_EQ(error.getType(), TProtocolException::INVALID_DATA) << what;
    }
}

TEST(RecordReading, UnknownIdsAndMismatchedTypesAreSkipped) {
    // Field 9 (delta 8, i32 1) is unknown to PlayerDataOverrides.
    const auto overrides =
        ReadGenerated<PlayerDataOverrides>(Join({{0x1C}, GuidBody('p'), {0x85, 0x02, 0x00}}));
    PlayerDataOverrides expected;
    expected.playerGuid.value = "p";
    EXPECT_EQ(overrides, expected);

    // results (field 2) sent as a set of one Guid, then as a map of Guid to i32.
    for (const Bytes& results :
         {Join({{0x2A, 0x1C}, GuidBody('x')}), Join({{0x2B, 0x01, 0xC5}, GuidBody('x'), {0x02}})}) {
        const auto reply = ReadGenerated<Commands::Generated::ChannelCommandReply>(
            Join({results, {0x0C, 0x02}, GuidBody('c'), {0x00}}));  // then field 1, long form
        EXPECT_TRUE(reply.results.empty());
        EXPECT_FALSE(reply.__isset.results);
        EXPECT_EQ(reply.commandGuid.value, "c");
    }

    // PlayerState field 7 as an i64, then field 8 with its position (field 2) at 2.
    const auto state = ReadGenerated<Data::Channels::Generated::PlayerState>(
        {0x76, 0x02, 0x1C, 0x26, 0x04, 0x00, 0x00});
    EXPECT_FALSE(state.__isset.currentClip);
    EXPECT_TRUE(state.__isset.nextClip);
    EXPECT_EQ(state.nextClip.position, 2);

    // Train field 2 as a set of one RecordingRange.
    const auto train =
        ReadGenerated<Data::Clips::Generated::Train>({0x2A, 0x1C, 0x16, 0x02, 0x00, 0x00});
    EXPECT_FALSE(train.__isset.recordingRanges);
    EXPECT_TRUE(train.recordingRanges.empty());

    // ClipMoveStartedEventArgs field 2 as an i64, field 3 a clip with umId "u".
    const auto move = ReadGenerated<Notifier::Generated::ClipMoveStartedEventArgs>(
        Join({{0x26, 0x02, 0x1C}, GuidBody('u'), {0x00}}));
    EXPECT_EQ(move.oldClip, Data::Clips::Generated::Clip());
    EXPECT_EQ(move.newClip.umId, "u");
}

TEST(RecordReading, FieldsAreReadInAnyOrder) {
    // Field 2 first, then field 1 in the long form (type byte, zigzag id) since its delta is < 0.
    const auto clip =
        ReadGenerated<Data::Clips::Generated::Clip>({0x28, 0x01, 's', 0x08, 0x02, 0x01, 'u', 0x00});
    EXPECT_EQ(clip.umId, "u");
    EXPECT_EQ(clip.sourceUmId, "s");
}

TEST(RecordReading, MissingRequiredFieldIsInvalidData) {
    const Bytes status = {0x1C, 0x15, 0x00, 0x00};  // field 2: OperationStatus {code 0}
    ExpectInvalidData<PlayerDataOverrides>({0x26, 0x02, 0x00}, "overrides without the player");
    ExpectInvalidData<Commands::Generated::GetMultiviewerDataCommandReply>(
        Join({{0x1C}, GuidBody('c'), status, {0x00}}), "multiviewer reply without field 3");
    ExpectInvalidData<Commands::Generated::GetMultiviewerDataCommandReply>(
        Join({{0x2C, 0x15, 0x00, 0x00, 0x1B, 0x00, 0x00}}), "multiviewer reply without field 1");
    ExpectInvalidData<AnglesGroup>(Join({{0x1C}, GuidBody('g'), {0x00}}), "group without angles");
    ExpectInvalidData<Notifier::Generated::AnglesGroupDeletionEventArgs>(
        Join({{0x1C, 0x00, 0x1C}, GuidBody('g'), {0x00}}), "group deletion without field 3");
    ExpectInvalidData<Notifier::Generated::AnglesGroupCreationFinishedEventArgs>(
        {0x00}, "creation finished without its event");

    // The same records with an empty map, or the last field, present are accepted.
    const auto reply = ReadGenerated<Commands::Generated::GetMultiviewerDataCommandReply>(
        Join({{0x1C}, GuidBody('c'), status, {0x1B, 0x00, 0x00}}));
    EXPECT_EQ(reply.commandGuid.value, "c");
    EXPECT_TRUE(reply.playerDataOverrides.empty());
    const auto group =
        ReadGenerated<AnglesGroup>(Join({{0x1C}, GuidBody('g'), {0x1B, 0x00, 0x00}}));
    EXPECT_EQ(group.groupGuid.value, "g");
    const auto deletion = ReadGenerated<Notifier::Generated::AnglesGroupDeletionEventArgs>(
        Join({{0x1C, 0x00, 0x1C}, GuidBody('g'), {0x16, 0x02, 0x00}}));
    EXPECT_EQ(deletion.revision, 1);
}

TEST(RecordReading, IncompleteAngleFailsTheWholeReplyThroughTheDeserializer) {
    // anglesGroups (field 3): one group "g" whose angle 1 has its clip but no camera.
    const Bytes reply = Join({{0x39, 0x1C, 0x1C},
                              GuidBody('g'),
                              {0x1B, 0x01, 0x5C, 0x02, 0x1C},
                              GuidBody('c'),
                              {0x00, 0x00, 0x00}});
    try {
        Deserialize<Commands::Generated::GetAnglesGroupsCommandReply>(reply);
        ADD_FAILURE() << "accepted";
    } catch (const Korvo::Common::Serialization::InvalidFormatException& error) {
        EXPECT_STREQ(error.what(), "The input could not be parsed by the deserializer");
    }
    // With the camera (field 2, i32 4) the same reply decodes.
    const Bytes complete = Join({{0x39, 0x1C, 0x1C},
                                 GuidBody('g'),
                                 {0x1B, 0x01, 0x5C, 0x02, 0x1C},
                                 GuidBody('c'),
                                 {0x15, 0x08, 0x00, 0x00, 0x00}});
    const auto decoded = Deserialize<Commands::Generated::GetAnglesGroupsCommandReply>(complete);
    ASSERT_EQ(decoded.anglesGroups.size(), 1u);
    EXPECT_EQ(decoded.anglesGroups[0].angles.at(1).camera, 4);
}

TEST(RecordReading, RepeatedMapKeyKeepsTheLastValue) {
    // playerStates (field 2): channel "a" with channelNumber 1, then "a" again with 2.
    const auto channels = ReadGenerated<Commands::Generated::GetChannelsCommandReply>(
        Join({{0x2B, 0x02, 0xCC},
              GuidBody('a'),
              {0x25, 0x02, 0x00},
              GuidBody('a'),
              {0x25, 0x04, 0x00, 0x00}}));
    ASSERT_EQ(channels.playerStates.size(), 1u);
    EXPECT_EQ(channels.playerStates.begin()->second.channelNumber, 2);

    // angles keyed by i32: index 3 twice, the second with camera 9.
    const auto group = ReadGenerated<AnglesGroup>(Join({{0x1C},
                                                        GuidBody('g'),
                                                        {0x1B, 0x02, 0x5C, 0x06, 0x1C},
                                                        GuidBody('x'),
                                                        {0x15, 0x02, 0x00, 0x06, 0x1C},
                                                        GuidBody('y'),
                                                        {0x15, 0x12, 0x00, 0x00}}));
    ASSERT_EQ(group.angles.size(), 1u);
    EXPECT_EQ(group.angles.at(3).clipGuid.value, "y");
    EXPECT_EQ(group.angles.at(3).camera, 9);
}

TEST(RecordReading, AbsentOptionalsStayUnsetAndPresentOnesAreMarked) {
    // A record compares equal to a default one only when every set-flag is clear as well.
    EXPECT_EQ(ReadGenerated<Commands::Generated::SuccessReply>({0x00}),
              Commands::Generated::SuccessReply());
    EXPECT_EQ(ReadGenerated<Data::Channels::Generated::PlayerState>({0x00}),
              Data::Channels::Generated::PlayerState());

    const auto server = ReadGenerated<Data::Servers::Generated::ServerInfo>({0x89, 0x05, 0x00});
    EXPECT_TRUE(server.__isset.channelNumbers);
    EXPECT_TRUE(server.channelNumbers.empty());

    // A boolean field carries its value in the field header: 0x51 is field 5, true.
    const auto recorder = ReadGenerated<Data::Channels::Generated::RecorderState>({0x51, 0x00});
    EXPECT_TRUE(recorder.__isset.isRecording);
    EXPECT_TRUE(recorder.isRecording);

    const auto group =
        ReadGenerated<Commands::Generated::AnglesGroupCommandReply>({0x4C, 0x29, 0x0C, 0x00, 0x00});
    EXPECT_TRUE(group.__isset.clipCommandReply);
    EXPECT_TRUE(group.clipCommandReply.__isset.results);
    EXPECT_TRUE(group.clipCommandReply.results.empty());

    const auto ranges =
        ReadGenerated<Notifier::Generated::RecordingRangesChangedEventArgs>({0x29, 0x0C, 0x00});
    EXPECT_TRUE(ranges.__isset.ranges);
    EXPECT_TRUE(ranges.ranges.empty());
    EXPECT_FALSE(ranges.isRecording);
    EXPECT_FALSE(ranges.isLoopRecording);
}

}  // namespace

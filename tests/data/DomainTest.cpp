#include <gtest/gtest.h>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/OperationStatus.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ChannelCommandReply.h>

namespace Korvo::Testing {
namespace {

using Plexis::Data::Channels::Guid;

TEST(ChannelGuid, WireTextRoundTripsAndMalformedTextIsRefused) {
    EXPECT_EQ(Guid::PlayerOf(1, 3).ToString(), "player:1:3");
    EXPECT_EQ(Guid::RecorderOf(12, 0).ToString(), "recorder:12:0");
    EXPECT_EQ(Guid().ToString(), "");
    EXPECT_EQ(Guid(Guid::Undefined, 0, 0), Guid());
    for (const Guid& channel : {Guid::PlayerOf(1, 3), Guid::RecorderOf(-2, 7), Guid()}) {
        EXPECT_EQ(Guid::Parse(channel.ToString()), channel);
    }
    for (const char* text : {"player:1", "player:1:", "player::3", "player:1:3x", "Player:1:3",
                             "recorder:1:-1", "camera:1:1", " player:1:3"}) {
        EXPECT_FALSE(Guid::Parse(text).has_value()) << text;
    }
    // Received texts: only our exact spelling is parsed; any other is kept whole, apart.
    EXPECT_EQ(Guid::FromWireText("player:1:3"), Guid::PlayerOf(1, 3));
    EXPECT_EQ(Guid::FromWireText(""), Guid());
    for (const char* text : {"player:01:3", "player:+1:3", "6f1c2a4e-0b7d-4c1e-9a53-2d8e5f4b7c10"}) {
        const auto opaque = Guid::FromWireText(text);
        ASSERT_TRUE(opaque.has_value()) << text;
        EXPECT_EQ(opaque->GetType(), Guid::Opaque) << text;
        EXPECT_EQ(opaque->ToString(), text);
        EXPECT_NE(*opaque, Guid::PlayerOf(1, 3)) << text;
    }
    EXPECT_FALSE(Guid::FromWireText(std::string(Guid::kMaxTextLength + 1, 'x')).has_value());
    EXPECT_LT(Guid::PlayerOf(2, 0), Guid::RecorderOf(1, 0));
    EXPECT_LT(Guid::PlayerOf(1, 9), Guid::PlayerOf(2, 0));
}

TEST(Clip, StartsBlankFilledWithTheDefaultTimecode) {
    const Plexis::Data::Clips::Clip clip;
    EXPECT_EQ(clip.umId, std::string(64, ' '));
    EXPECT_EQ(clip.materialId, std::string(32, ' '));
    EXPECT_EQ(clip.timecode, Plexis::Data::Clips::Clip::DefaultTimecode());
    EXPECT_EQ(clip.timecode.Sample(), 0);
    EXPECT_EQ(clip.timecode.RateNumerator(), 50);
    EXPECT_FALSE(clip.timecode.IsDropFrame());
    EXPECT_TRUE(clip.timecode.IsValid());
    EXPECT_FALSE(clip.lowResEssence.has_value());
}

TEST(ChannelCommandReply, HoldsTwelveResultsStartingAtTheDefaultStatus) {
    using Plexis::Tessel::HighLevelOperations::Commands::ChannelCommandReply;
    ChannelCommandReply reply;
    EXPECT_EQ(reply.count, 0);
    for (const auto& entry : reply.results) {
        EXPECT_TRUE(entry.channelGuid.IsUndefined());
        EXPECT_EQ(entry.status, (Plexis::Data::OperationStatus{0, 11}));
    }
    for (unsigned int channel = 0; channel < ChannelCommandReply::kCapacity; ++channel) {
        reply.Add({Guid::PlayerOf(1, channel), {1, 0}});
    }
    EXPECT_THROW(reply.Add({Guid::PlayerOf(1, 12), {1, 0}}), std::length_error);
    EXPECT_EQ(reply.end() - reply.begin(), 12);
}

}  // namespace
}  // namespace Korvo::Testing

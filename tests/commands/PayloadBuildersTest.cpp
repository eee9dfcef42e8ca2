#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Common/Serialization/InvalidConversionException.h>
#include <Korvo/Common/Serialization/Serializer.h>
#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Tessel/Client/ChannelsCommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>

#include "support/Samples.h"

namespace Korvo::Testing {
namespace {

using namespace Plexis::Tessel::HighLevelOperations::Commands;
using Plexis::Data::Guid;
using ChannelGuid = Plexis::Data::Channels::Guid;
namespace Wire = Plexis::Tessel::Serialization::Thrift::Commands::Generated;
namespace Converters = Plexis::Tessel::Serialization::Thrift::Commands;

const ChannelGuid kPlayerA = ChannelGuid::PlayerOf(1, 0);
const ChannelGuid kPlayerB = ChannelGuid::PlayerOf(1, 3);
const ChannelGuid kRecorder = ChannelGuid::RecorderOf(2, 1);

template <class Params>
Params WithId(const char* id) {
    Params params;
    params.commandGuid = Guid(id);
    return params;
}

// Builds the payload of `name`, decodes it as the wire record `W`, converts it back with the
// record's decoding converter `Back` and expects the parameters that went in. Returns the record
// for checks of the wire form itself.
template <class W, class Back, class Params>
W ExpectRoundTrip(Plexis::Tessel::Client::CommandParamsPayloadBuilder& builder,
                  const std::string& name, const Params& params) {
    auto payload = builder.BuildPayload(name, params);
    W wire;
    Common::Serialization::DeserializerImpl<W>().Deserialize(*payload, wire);
    Params back;
    const auto result = Back().To(wire, back);
    EXPECT_TRUE(result.success) << name << ": " << result.message;
    EXPECT_TRUE(back == params) << name << " did not survive the round trip";
    return wire;
}

TEST(ChannelsCommandParamsPayloadBuilder, EveryCommandEncodesEveryField) {
    Plexis::Tessel::Client::ChannelsCommandParamsPayloadBuilder builder;

    auto play = WithId<PlayCommandParams>("play-1");
    play.players = {kPlayerA, kPlayerB};
    play.speedNum = 1;
    play.speedDen = 2;
    auto playWire =
        ExpectRoundTrip<Wire::PlayCommandParams, Converters::ThriftToPlayCommandParamsConverter>(
            builder, "PlayCommand", play);
    EXPECT_EQ(playWire.commandId.value, "play-1");
    EXPECT_EQ(playWire.speedDen, 2);
    ASSERT_EQ(playWire.players.size(), 2u);
    EXPECT_EQ(playWire.players.begin()->value, "player:1:0");

    auto live = WithId<LiveCommandParams>("live-1");
    live.players = {{kPlayerA, Guid("feed-a")}, {kPlayerB, Guid("feed-b")}};
    ExpectRoundTrip<Wire::LiveCommandParams, Converters::ThriftToLiveCommandParamsConverter>(
        builder, "LiveCommand", live);

    auto chain = WithId<ChainCommandParams>("chain-1");
    chain.players = {{kPlayerA, Guid("clip-9")}};
    chain.timepoint = 987654321;
    chain.inBoundary = Samples::Boundary(1);
    chain.outBoundary = Samples::Boundary(2);
    ExpectRoundTrip<Wire::ChainCommandParams, Converters::ThriftToChainCommandParamsConverter>(
        builder, "ChainCommand", chain);

    auto dial = WithId<DialCommandParams>("dial-1");
    dial.players = {kPlayerB};
    dial.velocity = -3;
    ExpectRoundTrip<Wire::DialCommandParams, Converters::ThriftToDialCommandParamsConverter>(
        builder, "DialCommand", dial);

    auto step = WithId<StepCommandParams>("step-1");
    step.players = {kPlayerA};
    step.fieldCount = -2;
    ExpectRoundTrip<Wire::StepCommandParams, Converters::ThriftToStepCommandParamsConverter>(
        builder, "StepCommand", step);

    auto sync = WithId<SyncCommandParams>("sync-1");
    sync.sourcePlayer = kPlayerA;
    sync.players = {kPlayerB};
    sync.inBoundary = Samples::Boundary(3);
    sync.outBoundary = Samples::Boundary(4);
    ExpectRoundTrip<Wire::SyncCommandParams, Converters::ThriftToSyncCommandParamsConverter>(
        builder, "SyncCommand", sync);

    auto loadClips = WithId<LoadClipsCommandParams>("load-1");
    loadClips.playersParameters[kPlayerA] = {Guid("clip-1"), 77, Samples::Boundary(5),
                                             Samples::Boundary(6)};
    ExpectRoundTrip<Wire::LoadClipsCommandParams,
                    Converters::ThriftToLoadClipsCommandParamsConverter>(
        builder, "LoadClipsCommand", loadClips);

    auto loadSequences = WithId<LoadSequencesCommandParams>("load-2");
    loadSequences.playersParameters[kPlayerB] = {Guid("playlist-1"), 250, true};
    ExpectRoundTrip<Wire::LoadSequencesCommandParams,
                    Converters::ThriftToLoadSequencesCommandParamsConverter>(
        builder, "LoadSequencesCommand", loadSequences);

    auto boundaries = WithId<SetLoadBoundariesCommandParams>("bounds-1");
    boundaries.playersParameters[kPlayerA] = {Samples::Boundary(7), Samples::Boundary(8)};
    ExpectRoundTrip<Wire::SetLoadBoundariesCommandParams,
                    Converters::ThriftToSetLoadBoundariesCommandParamsConverter>(
        builder, "SetLoadBoundariesCommand", boundaries);

    auto idle = WithId<GoIdleCommandParams>("idle-1");
    idle.players = {kPlayerA, kPlayerB};
    idle.setBlackScreen = true;
    ExpectRoundTrip<Wire::GoIdleCommandParams, Converters::ThriftToGoIdleCommandParamsConverter>(
        builder, "GoIdleCommand", idle);

    // The recording commands take StartCommandParams and StopCommandParams.
    auto start = WithId<StartCommandParams>("rec-1");
    start.recorders = {kRecorder};
    auto startWire = ExpectRoundTrip<Wire::StartRecordingCommandParams,
                                     Converters::ThriftToStartRecordingCommandParamsConverter>(
        builder, "StartRecordingCommand", start);
    EXPECT_EQ(startWire.recorders.begin()->value, "recorder:2:1");
    auto stop = WithId<StopCommandParams>("rec-2");
    stop.recorders = {kRecorder};
    ExpectRoundTrip<Wire::StopRecordingCommandParams,
                    Converters::ThriftToStopRecordingCommandParamsConverter>(
        builder, "StopRecordingCommand", stop);

    ExpectRoundTrip<Wire::GetChannelsCommandParams,
                    Converters::ThriftToGetChannelsCommandParamsConverter>(
        builder, "GetChannelsCommand", WithId<GetChannelsCommandParams>("channels-1"));
    ExpectRoundTrip<Wire::GetMultiviewerDataCommandParams,
                    Converters::ThriftToGetMultiviewerDataCommandParamsConverter>(
        builder, "GetMultiviewerDataCommand", WithId<GetMultiviewerDataCommandParams>("mv-1"));

    auto setMultiviewer = WithId<SetMultiviewerDataCommandParams>("mv-2");
    setMultiviewer.playersDataOverrides[kPlayerA] = Samples::Overrides(kPlayerA);
    ExpectRoundTrip<Wire::SetMultiviewerDataCommandParams,
                    Converters::ThriftToSetMultiviewerDataCommandParamsConverter>(
        builder, "SetMultiviewerDataCommand", setMultiviewer);
}

TEST(DataCommandParamsPayloadBuilder, EveryCommandEncodesEveryField) {
    Plexis::Tessel::Client::DataCommandParamsPayloadBuilder builder;

    auto ping =
        ExpectRoundTrip<Wire::PingCommandParams, Converters::ThriftToPingCommandParamsConverter>(
            builder, "PingCommand", WithId<PingCommandParams>("ping-1"));
    EXPECT_EQ(ping.commandGuid.value, "ping-1");
    ExpectRoundTrip<Wire::GetClipsCommandParams,
                    Converters::ThriftToGetClipsCommandParamsConverter>(
        builder, "GetClipsCommand", WithId<GetClipsCommandParams>("clips-1"));
    ExpectRoundTrip<Wire::GetTrainsCommandParams,
                    Converters::ThriftToGetTrainsCommandParamsConverter>(
        builder, "GetTrainsCommand", WithId<GetTrainsCommandParams>("trains-1"));
    ExpectRoundTrip<Wire::GetAnglesGroupsCommandParams,
                    Converters::ThriftToGetAnglesGroupsCommandParamsConverter>(
        builder, "GetAnglesGroupsCommand", WithId<GetAnglesGroupsCommandParams>("groups-1"));

    auto servers = WithId<GetServersCommandParams>("servers-1");
    servers.serverRange = 2;
    ExpectRoundTrip<Wire::GetServersCommandParams,
                    Converters::ThriftToGetServersCommandParamsConverter>(
        builder, "GetServersCommand", servers);

    auto playlists = WithId<GetPlaylistsCommandParams>("playlists-1");
    playlists.elementMode = 3;
    auto unfiltered = ExpectRoundTrip<Wire::GetPlaylistsCommandParams,
                                      Converters::ThriftToGetPlaylistsCommandParamsConverter>(
        builder, "GetPlaylistsCommand", playlists);
    EXPECT_FALSE(unfiltered.__isset.idFilter);
    playlists.idFilter = Guid("playlist-7");
    ExpectRoundTrip<Wire::GetPlaylistsCommandParams,
                    Converters::ThriftToGetPlaylistsCommandParamsConverter>(
        builder, "GetPlaylistsCommand", playlists);

    auto deleteClips = WithId<DeleteClipsCommandParams>("delete-1");
    deleteClips.clips = {Guid("c1"), Guid("c2")};
    ExpectRoundTrip<Wire::DeleteClipsCommandParams,
                    Converters::ThriftToDeleteClipsCommandParamsConverter>(
        builder, "DeleteClipsCommand", deleteClips);

    auto createClips = WithId<CreateClipsCommandParams>("create-1");
    createClips.clips = {{Guid("source-1"), Samples::Clip(1), true},
                         {Guid("source-2"), Samples::Clip(2), false}};
    ExpectRoundTrip<Wire::CreateClipsCommandParams,
                    Converters::ThriftToCreateClipsCommandParamsConverter>(
        builder, "CreateClipsCommand", createClips);

    auto updateClips = WithId<UpdateClipsCommandParams>("update-1");
    updateClips.clips = {{Samples::Clip(3), Samples::Clip(4)}};
    ExpectRoundTrip<Wire::UpdateClipsCommandParams,
                    Converters::ThriftToUpdateClipsCommandParamsConverter>(
        builder, "UpdateClipsCommand", updateClips);

    auto deleteGroup = WithId<DeleteAnglesGroupCommandParams>("group-del");
    deleteGroup.groupGuid = Guid("group-1");
    ExpectRoundTrip<Wire::DeleteAnglesGroupCommandParams,
                    Converters::ThriftToDeleteAnglesGroupCommandParamsConverter>(
        builder, "DeleteAnglesGroupCommand", deleteGroup);

    auto updateGroup = WithId<UpdateAnglesGroupCommandParams>("group-upd");
    updateGroup.groupGuid = Guid("group-1");
    auto bare = ExpectRoundTrip<Wire::UpdateAnglesGroupCommandParams,
                                Converters::ThriftToUpdateAnglesGroupCommandParamsConverter>(
        builder, "UpdateAnglesGroupCommand", updateGroup);
    EXPECT_FALSE(bare.__isset.primaryAngle || bare.__isset.secondaryAngle);
    updateGroup.primaryAngle = Guid("clip-a");
    updateGroup.secondaryAngle = Guid("clip-b");
    ExpectRoundTrip<Wire::UpdateAnglesGroupCommandParams,
                    Converters::ThriftToUpdateAnglesGroupCommandParamsConverter>(
        builder, "UpdateAnglesGroupCommand", updateGroup);

    // The group's clips travel as a whole clip-creation command with an identifier of its own.
    auto createGroup = WithId<CreateAnglesGroupCommandParams>("group-new");
    createGroup.groupKivIndex = 4;
    createGroup.creationParams.commandGuid = Guid("group-new-clips");
    createGroup.creationParams.clips = {{Guid("source-3"), Samples::Clip(5), true}};
    auto nested = ExpectRoundTrip<Wire::CreateAnglesGroupCommandParams,
                                  Converters::ThriftToCreateAnglesGroupCommandParamsConverter>(
        builder, "CreateAnglesGroupCommand", createGroup);
    EXPECT_EQ(nested.creationParams.commandGuid.value, "group-new-clips");

    auto createPlaylists = WithId<CreatePlaylistsCommandParams>("pl-new");
    createPlaylists.playlists = {Samples::Playlist(1), Samples::Playlist(2)};
    ExpectRoundTrip<Wire::CreatePlaylistsCommandParams,
                    Converters::ThriftToCreatePlaylistsCommandParamsConverter>(
        builder, "CreatePlaylistsCommand", createPlaylists);

    auto deletePlaylists = WithId<DeletePlaylistsCommandParams>("pl-del");
    deletePlaylists.playlists = {Guid("playlist-1")};
    ExpectRoundTrip<Wire::DeletePlaylistsCommandParams,
                    Converters::ThriftToDeletePlaylistsCommandParamsConverter>(
        builder, "DeletePlaylistsCommand", deletePlaylists);

    auto updatePlaylists = WithId<UpdatePlaylistsCommandParams>("pl-upd");
    updatePlaylists.params = {{Samples::Playlist(3), Samples::Playlist(4)}};
    ExpectRoundTrip<Wire::UpdatePlaylistsCommandParams,
                    Converters::ThriftToUpdatePlaylistsCommandParamsConverter>(
        builder, "UpdatePlaylistsCommand", updatePlaylists);
}

TEST(PayloadBuilders, EachKnowsOnlyItsOwnExactNames) {
    Plexis::Tessel::Client::ChannelsCommandParamsPayloadBuilder channels;
    Plexis::Tessel::Client::DataCommandParamsPayloadBuilder data;
    const auto ping = WithId<PingCommandParams>("x");
    const auto play = WithId<PlayCommandParams>("x");
    auto expectUnknown = [](auto& builder, const std::string& name, const CommandParams& params) {
        try {
            builder.BuildPayload(name, params);
            ADD_FAILURE() << "'" << name << "' was accepted";
        } catch (const std::invalid_argument& error) {
            EXPECT_STREQ(error.what(), "Unknown command type.");
        }
    };
    for (const char* name : {"playCommand", "PlayCommand ", "", "PingCommand"}) {
        expectUnknown(channels, name, play);
    }
    for (const char* name :
         {"PlayCommand", "GetAnglesGroupCommand", "DeleteAnglesGroupsCommand", "pingcommand"}) {
        expectUnknown(data, name, ping);
    }
}

TEST(PayloadBuilders, ConversionFailuresNameTheRecordAndField) {
    Plexis::Tessel::Client::ChannelsCommandParamsPayloadBuilder builder;
    try {
        builder.BuildPayload("PlayCommand", PlayCommandParams());
        ADD_FAILURE() << "a command without identifier was encoded";
    } catch (const Common::Serialization::InvalidConversionException& error) {
        EXPECT_STREQ(error.what(),
                     "PlayCommandParams.commandGuid: the command identifier is empty; every "
                     "command needs one, since the server echoes it in its reply");
    }
    auto idle = WithId<GoIdleCommandParams>("idle");
    idle.players = {ChannelGuid()};
    try {
        builder.BuildPayload("GoIdleCommand", idle);
        ADD_FAILURE() << "an undefined channel was encoded";
    } catch (const Common::Serialization::InvalidConversionException& error) {
        EXPECT_STREQ(error.what(),
                     "GoIdleCommandParams.players[]: the channel is undefined; name a player or "
                     "a recorder");
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
    ExpectNothingCarriedOver<CreateClipsCommandParams, Wire::CreateClipsCommandParams>(
        Samples::Filled<CreateClipsCommandParams>(1), fewer);
    ExpectNothingCarriedOver<UpdateAnglesGroupCommandParams, Wire::UpdateAnglesGroupCommandParams>(
        Samples::Filled<UpdateAnglesGroupCommandParams>(1),
        WithId<UpdateAnglesGroupCommandParams>("unset-angles"));
}

}  // namespace
}  // namespace Korvo::Testing

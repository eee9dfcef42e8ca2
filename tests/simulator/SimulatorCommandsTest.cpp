// Every command sent through the real clients and transport to a simulator on loopback: each
// reply checked for content, and the notifications each change causes.

#include <algorithm>
#include <set>
#include <thread>

#include "support/SimulatorSession.h"

namespace Korvo::Testing {
namespace {

using Plexis::Data::Guid;
using ChannelId = Plexis::Data::Channels::Guid;
using Plexis::Data::OperationStatus;

OperationStatus Status(int code, int reason) {
    OperationStatus status;
    status.code = code;
    status.reason = reason;
    return status;
}
const OperationStatus kOk = Status(0, 0);

const ChannelId kPlayer = ChannelId::PlayerOf(1, 0);
const ChannelId kOtherPlayer = ChannelId::PlayerOf(1, 1);
const ChannelId kRecorder = ChannelId::RecorderOf(1, 4);

class SimulatorCommandsTest : public ::testing::Test {
protected:
    std::vector<Plexis::Data::Clips::Clip> Clips() {
        const auto answer = session.AskData("GetClipsCommand", NewParams<Commands::GetClipsCommandParams>());
        std::vector<Plexis::Data::Clips::Clip> clips;
        for (const auto& reply : answer.replies) {
            const auto& part = dynamic_cast<const Commands::GetClipsCommandReply&>(*reply);
            clips.insert(clips.end(), part.clips.begin(), part.clips.end());
        }
        return clips;
    }

    Plexis::Data::Channels::PlayerState StateOf(const ChannelId& player) {
        const auto answer =
            session.AskChannel("GetChannelsCommand", NewParams<Commands::GetChannelsCommandParams>());
        return answer.Final<Commands::GetChannelsCommandReply>().playerStates.at(player);
    }

    // The state the next PlayerStateChanged for `player` after `count` earlier ones carries.
    Plexis::Data::Channels::PlayerState NextPublished(const ChannelId& player, std::size_t count) {
        return session.inbox
            .WaitFor<Events::PlayerStateChangedEventArgs>(
                [&](const Events::PlayerStateChangedEventArgs& args) {
                    return args.channelGuid == player;
                },
                count)
            .state;
    }

    // Sends a channel command and expects one result per channel, in order.
    void ExpectResults(const std::string& name, const Commands::CommandParams& params,
                       const std::vector<std::pair<ChannelId, OperationStatus>>& expected) {
        const auto answer = session.AskChannel(name, params);
        const auto& reply = answer.Final<Commands::ChannelCommandReply>();
        EXPECT_EQ(reply.commandGuid, params.commandGuid) << name;
        ASSERT_EQ(reply.count, static_cast<int>(expected.size())) << name;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_EQ(reply.results[i].channelGuid, expected[i].first) << name;
            EXPECT_EQ(reply.results[i].status, expected[i].second) << name << " on " << i;
        }
    }

    SimulatorSession session;
};

TEST_F(SimulatorCommandsTest, ListingsDescribeTheSeededSystem) {
    auto ping = NewParams<Commands::PingCommandParams>();
    EXPECT_EQ(session.AskData("PingCommand", ping).Final<Commands::SuccessReply>().commandGuid,
              ping.commandGuid);
    const auto servers =
        session.AskData("GetServersCommand", NewParams<Commands::GetServersCommandParams>());
    EXPECT_EQ(servers.Final<Commands::GetServersCommandReply>().servers.size(), 2u);
    const auto channels =
        session.AskChannel("GetChannelsCommand", NewParams<Commands::GetChannelsCommandParams>());
    const auto& states = channels.Final<Commands::GetChannelsCommandReply>();
    EXPECT_EQ(states.playerStates.size(), 8u);
    EXPECT_EQ(states.recorderStates.size(), 4u);
    const auto trains =
        session.AskData("GetTrainsCommand", NewParams<Commands::GetTrainsCommandParams>());
    EXPECT_EQ(trains.Final<Commands::GetTrainsCommandReply>().trains.size(), 4u);
    const auto clips = Clips();
    ASSERT_EQ(clips.size(), 50u);
    EXPECT_LT(clips.front().inBoundField, clips.front().outBoundField);
    const auto groups = session.AskData("GetAnglesGroupsCommand",
                                        NewParams<Commands::GetAnglesGroupsCommandParams>());
    EXPECT_EQ(groups.Final<Commands::GetAnglesGroupsCommandReply>().anglesGroups.size(), 3u);
    const auto playlists =
        session.AskData("GetPlaylistsCommand", NewParams<Commands::GetPlaylistsCommandParams>());
    const auto& playlistList = playlists.Final<Commands::GetPlaylistsCommandReply>().playlists;
    ASSERT_EQ(playlistList.size(), 3u);
    EXPECT_EQ(playlistList[0].audioVideoTrack.elements->size(), 3u);
}

TEST_F(SimulatorCommandsTest, PlayerCommandsDriveThePlayerAndPublishItsState) {
    const auto clips = Clips();
    const auto& clip = clips.at(0);
    std::size_t published = 0;

    auto load = NewParams<Commands::LoadClipsCommandParams>();
    load.playersParameters[kPlayer].clip = Guid(clip.umId);
    ExpectResults("LoadClipsCommand", load, {{kPlayer, kOk}});
    auto state = NextPublished(kPlayer, published++);
    EXPECT_EQ(state.playMode, 1);
    EXPECT_EQ(state.loadedClipUmId, clip.umId);
    EXPECT_EQ(state.currentClip.clip.umId, clip.umId);
    EXPECT_EQ(state.infoOnAir.inPoint, clip.inBoundField);
    EXPECT_EQ(state.currentTimepoint, clip.inBoundField);

    auto play = NewParams<Commands::PlayCommandParams>();
    play.players = {kPlayer};
    ExpectResults("PlayCommand", play, {{kPlayer, kOk}});
    EXPECT_EQ(NextPublished(kPlayer, published++).playMode, 2);
    // Time runs: the player moves on through the clip.
    EXPECT_TRUE(Eventually([&] { return StateOf(kPlayer).currentTimepoint > clip.inBoundField; }));

    auto step = NewParams<Commands::StepCommandParams>();
    step.players = {kPlayer};
    step.fieldCount = -1000000;  // far before the start: stops at the in point
    ExpectResults("StepCommand", step, {{kPlayer, kOk}});
    state = NextPublished(kPlayer, published++);
    EXPECT_EQ(state.playMode, 1);
    EXPECT_EQ(state.currentTimepoint, clip.inBoundField);

    auto dial = NewParams<Commands::DialCommandParams>();
    dial.players = {kPlayer};
    dial.velocity = 50;
    ExpectResults("DialCommand", dial, {{kPlayer, kOk}});
    state = NextPublished(kPlayer, published++);
    EXPECT_EQ(state.playMode, 4);
    EXPECT_EQ(state.infoOnAir.speedNumerator, 50);

    auto bounds = NewParams<Commands::SetLoadBoundariesCommandParams>();
    bounds.playersParameters[kPlayer].inBoundary =
        Plexis::Data::Channels::LoadBoundary::Relative(1, 10);
    bounds.playersParameters[kPlayer].outBoundary =
        Plexis::Data::Channels::LoadBoundary::Relative(1, 100);
    ExpectResults("SetLoadBoundariesCommand", bounds, {{kPlayer, kOk}});
    state = NextPublished(kPlayer, published++);
    EXPECT_EQ(state.infoOnAir.inPoint, clip.inBoundField + 10);
    EXPECT_EQ(state.infoOnAir.outPoint, clip.inBoundField + 110);
    EXPECT_EQ(state.inBoundary.relativeFieldCount, 10);

    auto chain = NewParams<Commands::ChainCommandParams>();
    chain.players[kPlayer] = Guid(clips.at(1).umId);
    chain.timepoint = 1234;  // before the clip: it starts at its in point, as a load's cue
    ExpectResults("ChainCommand", chain, {{kPlayer, kOk}});
    state = NextPublished(kPlayer, published++);
    EXPECT_EQ(state.nextClip.clip.umId, clips.at(1).umId);
    EXPECT_EQ(state.chainTimepoint, clips.at(1).inBoundField);
    EXPECT_EQ(state.nextClip.position, 0);

    auto sync = NewParams<Commands::SyncCommandParams>();
    sync.sourcePlayer = kPlayer;
    sync.players = {kOtherPlayer};
    ExpectResults("SyncCommand", sync, {{kOtherPlayer, kOk}});
    EXPECT_EQ(NextPublished(kOtherPlayer, 0).loadedClipUmId, clip.umId);

    auto live = NewParams<Commands::LiveCommandParams>();
    live.players[kOtherPlayer] = Guid(kRecorder.ToString());
    ExpectResults("LiveCommand", live, {{kOtherPlayer, kOk}});
    state = NextPublished(kOtherPlayer, 1);
    EXPECT_EQ(state.playMode, 3);
    EXPECT_EQ(state.liveRecorderName, "replay-1/Recorder 1");

    const auto playlists = session.AskData("GetPlaylistsCommand",
                                           NewParams<Commands::GetPlaylistsCommandParams>());
    const auto& playlist = playlists.Final<Commands::GetPlaylistsCommandReply>().playlists.at(0);
    auto sequence = NewParams<Commands::LoadSequencesCommandParams>();
    sequence.playersParameters[kPlayer].sequence = Guid(playlist.sequence.umId);
    ExpectResults("LoadSequencesCommand", sequence, {{kPlayer, kOk}});
    state = NextPublished(kPlayer, published++);
    EXPECT_EQ(state.loadedSequenceUmId, playlist.sequence.umId);
    EXPECT_EQ(state.loadedMaterialType, 2);
    EXPECT_EQ(state.infoOnAir.elementCount, 3);

    auto idle = NewParams<Commands::GoIdleCommandParams>();
    idle.players = {kPlayer, kOtherPlayer};
    ExpectResults("GoIdleCommand", idle, {{kPlayer, kOk}, {kOtherPlayer, kOk}});
    EXPECT_EQ(NextPublished(kPlayer, published++).playMode, 0);

    // What cannot be done is refused channel by channel, never fatal.
    auto refused = NewParams<Commands::PlayCommandParams>();
    refused.players = {kPlayer, ChannelId::PlayerOf(9, 9), ChannelId::PlayerOf(1, 4)};
    ExpectResults("PlayCommand", refused,
                  {{kPlayer, Status(1, 3)},
                   {ChannelId::PlayerOf(1, 4), Status(1, 2)},
                   {ChannelId::PlayerOf(9, 9), Status(1, 1)}});
    auto unknownClip = NewParams<Commands::LoadClipsCommandParams>();
    unknownClip.playersParameters[kPlayer].clip = Guid("no such clip");
    ExpectResults("LoadClipsCommand", unknownClip, {{kPlayer, Status(1, 4)}});
}

TEST_F(SimulatorCommandsTest, AChainedClipFollowsAtItsOutPointAndSyncFollowsALiveSource) {
    const auto clips = Clips();
    const auto& first = clips.at(0);
    const auto& next = clips.at(1);
    auto load = NewParams<Commands::LoadClipsCommandParams>();
    load.playersParameters[kPlayer].clip = Guid(first.umId);
    load.playersParameters[kPlayer].timepoint = first.outBoundField - 25;  // half a second left
    ExpectResults("LoadClipsCommand", load, {{kPlayer, kOk}});

    auto chain = NewParams<Commands::ChainCommandParams>();
    chain.players[kPlayer] = Guid(next.umId);
    chain.outBoundary = Plexis::Data::Channels::LoadBoundary::Absolute(1, next.inBoundField - 1);
    ExpectResults("ChainCommand", chain, {{kPlayer, Status(1, 7)}});  // out point before in
    chain.outBoundary = {};
    chain.timepoint = next.inBoundField + 50;
    ExpectResults("ChainCommand", chain, {{kPlayer, kOk}});
    EXPECT_EQ(StateOf(kPlayer).nextClip.position, 50);

    auto play = NewParams<Commands::PlayCommandParams>();
    play.players = {kPlayer};
    ExpectResults("PlayCommand", play, {{kPlayer, kOk}});
    const auto carriedOn = session.inbox.WaitFor<Events::PlayerStateChangedEventArgs>(
        [&](const Events::PlayerStateChangedEventArgs& args) {
            return args.channelGuid == kPlayer && args.state.loadedClipUmId == next.umId;
        });
    EXPECT_EQ(carriedOn.state.playMode, 2);
    EXPECT_GE(carriedOn.state.currentTimepoint, next.inBoundField + 50);
    EXPECT_NE(carriedOn.state.nextClip.clip.umId, next.umId);  // the chain is used up

    auto live = NewParams<Commands::LiveCommandParams>();
    live.players[kPlayer] = Guid(kRecorder.ToString());
    ExpectResults("LiveCommand", live, {{kPlayer, kOk}});
    auto sync = NewParams<Commands::SyncCommandParams>();
    sync.sourcePlayer = kPlayer;
    sync.players = {kOtherPlayer};
    ExpectResults("SyncCommand", sync, {{kOtherPlayer, kOk}});
    const auto synced = StateOf(kOtherPlayer);
    EXPECT_EQ(synced.playMode, 3);
    EXPECT_EQ(synced.loadedMaterialType, 3);
    EXPECT_EQ(synced.liveRecorderName, "replay-1/Recorder 1");
}

TEST_F(SimulatorCommandsTest, RecordingGrowsATrainAndMakesAClipWhenStopped) {
    auto start = NewParams<Commands::StartCommandParams>();
    start.recorders = {kRecorder};
    ExpectResults("StartRecordingCommand", start, {{kRecorder, kOk}});
    EXPECT_TRUE(session.inbox.WaitFor<Events::RecorderStateChangedEventArgs>().state.isRecording);
    // As time passes the range being recorded grows and is published again.
    const auto grown = session.inbox.WaitFor<Events::RecordingRangesChangedEventArgs>(
        [](const Events::RecordingRangesChangedEventArgs& args) {
            return args.isRecording && !args.ranges.empty() &&
                   args.ranges.back().outTimepoint > args.ranges.back().inTimepoint;
        });
    EXPECT_EQ(grown.channelGuid, kRecorder);
    ExpectResults("StartRecordingCommand", start, {{kRecorder, Status(1, 5)}});

    auto stop = NewParams<Commands::StopCommandParams>();
    stop.recorders = {kRecorder, ChannelId::RecorderOf(2, 5)};
    ExpectResults("StopRecordingCommand", stop, {{kRecorder, kOk}, {ChannelId::RecorderOf(2, 5), Status(1, 6)}});
    const auto started = session.inbox.WaitFor<Events::ClipCreationEventArgs>();
    const auto finished = session.inbox.WaitFor<Events::ClipCreationFinishedEventArgs>();
    EXPECT_EQ(finished.clip, started.clip);
    EXPECT_EQ(finished.commandGuid, stop.commandGuid);
    EXPECT_EQ(started.sourceClip.trainStatus, 1);
    EXPECT_GT(finished.clip.outBoundField, finished.clip.inBoundField);
    EXPECT_FALSE(session.inbox
                     .WaitFor<Events::RecorderStateChangedEventArgs>(
                         [](const Events::RecorderStateChangedEventArgs& args) {
                             return !args.state.isRecording;
                         })
                     .state.isRecording);

    const auto clips = Clips();
    EXPECT_EQ(clips.size(), 51u);
    EXPECT_TRUE(std::any_of(clips.begin(), clips.end(), [&](const auto& clip) {
        return clip.umId == finished.clip.umId;
    }));
    const auto trains = session.AskData("GetTrainsCommand", NewParams<Commands::GetTrainsCommandParams>());
    const auto& train = trains.Final<Commands::GetTrainsCommandReply>().trains.at(0);
    ASSERT_EQ(train.recordingRanges.size(), 1u);
    EXPECT_EQ(train.recordingRanges[0].outTimepoint, finished.clip.outBoundField);
    EXPECT_FALSE(train.isRecording);
}

TEST_F(SimulatorCommandsTest, ClipCommandsChangeTheCatalogueAndPublishEachChange) {
    auto create = NewParams<Commands::CreateClipsCommandParams>();
    create.clips.resize(1);
    create.clips[0].clip.name = Plexis::Data::Clips::AsciiOrUtf16String::Ascii("Made here");
    create.clips[0].clip.inBoundField = 100;
    create.clips[0].clip.outBoundField = 600;
    create.clips[0].setTimecodes = true;
    const auto created = session.AskData("CreateClipsCommand", create);
    const auto& result = created.Final<Commands::ClipCommandReply>().results.at(0);
    EXPECT_EQ(result.status, kOk);
    ASSERT_EQ(result.clip.umId.find(' '), std::string::npos);  // given an identifier
    EXPECT_EQ(session.inbox.WaitFor<Events::ClipCreationFinishedEventArgs>().clip.umId,
              result.clip.umId);

    auto update = NewParams<Commands::UpdateClipsCommandParams>();
    update.clips.resize(1);
    update.clips[0].oldClip = result.clip;
    update.clips[0].newClip = result.clip;
    update.clips[0].newClip.name = Plexis::Data::Clips::AsciiOrUtf16String::Ascii("Renamed");
    EXPECT_EQ(session.AskData("UpdateClipsCommand", update).Final<Commands::ClipCommandReply>().results.at(0).status, kOk);
    const auto updated = session.inbox.WaitFor<Events::ClipUpdateFinishedEventArgs>();
    EXPECT_EQ(updated.newClip.name.data, "Renamed");
    EXPECT_EQ(updated.oldClip.name.data, "Made here");
    EXPECT_TRUE(updated.succeeded);

    auto move = NewParams<Commands::UpdateClipsCommandParams>();
    move.clips.resize(1);
    move.clips[0].oldClip = updated.newClip;
    move.clips[0].newClip = updated.newClip;
    move.clips[0].newClip.kivIndex = 999;
    session.AskData("UpdateClipsCommand", move);
    EXPECT_EQ(session.inbox.WaitFor<Events::ClipMoveEventArgs>().newClip.kivIndex, 999);
    EXPECT_EQ(session.inbox.WaitFor<Events::ClipMoveFinishedEventArgs>().oldClip.kivIndex, 0);

    auto remove = NewParams<Commands::DeleteClipsCommandParams>();
    remove.clips = {Guid(result.clip.umId), Guid("no such clip")};
    const auto deleted = session.AskData("DeleteClipsCommand", remove);
    const auto& results = deleted.Final<Commands::ClipCommandReply>().results;
    ASSERT_EQ(results.size(), 2u);
    EXPECT_EQ(results[0].status, kOk);
    EXPECT_EQ(results[1].status, Status(1, 4));
    EXPECT_EQ(session.inbox.WaitFor<Events::ClipDeletionFinishedEventArgs>().clip.umId,
              result.clip.umId);

    // Beyond ten clips a change is published once per server, as a mass change.
    const auto clips = Clips();
    auto massUpdate = NewParams<Commands::UpdateClipsCommandParams>();
    auto massDelete = NewParams<Commands::DeleteClipsCommandParams>();
    for (std::size_t i = 0; i < 12; ++i) {
        massUpdate.clips.push_back({clips[i], clips[i]});
        massUpdate.clips.back().newClip.rating = 5;
        massDelete.clips.push_back(Guid(clips[i].umId));
    }
    session.AskData("UpdateClipsCommand", massUpdate);
    session.AskData("DeleteClipsCommand", massDelete);
    EXPECT_GT(session.inbox.WaitFor<Events::MassClipUpdateEventArgs>().clipCount, 0);
    EXPECT_EQ(session.inbox.WaitFor<Events::MassClipDeletionEventArgs>().commandGuid,
              massDelete.commandGuid);
    EXPECT_EQ(Clips().size(), 50u - 12u);
    EXPECT_EQ(session.inbox.Count<Events::ClipDeletionFinishedEventArgs>(), 1u);
}

TEST_F(SimulatorCommandsTest, AnglesGroupsPlaylistsAndMultiviewerDataAreKept) {
    auto createGroup = NewParams<Commands::CreateAnglesGroupCommandParams>();
    createGroup.creationParams.commandGuid = Guid("inner");
    createGroup.creationParams.clips.resize(2);
    createGroup.creationParams.clips[0].clip.camera = 3;
    createGroup.creationParams.clips[1].clip.camera = 4;
    const auto created = session.AskData("CreateAnglesGroupCommand", createGroup);
    const auto& groupReply = created.Final<Commands::AnglesGroupCommandReply>();
    EXPECT_EQ(groupReply.status, kOk);
    EXPECT_EQ(groupReply.clipCommandReply.results.size(), 2u);
    const auto groupCreated = session.inbox.WaitFor<Events::AnglesGroupCreationFinishedEventArgs>();
    EXPECT_EQ(groupCreated.anglesGroup.groupGuid, groupReply.groupGuid);
    EXPECT_EQ(groupCreated.anglesGroup.angles.at(1).camera, 4);

    const auto clips = Clips();
    auto updateGroup = NewParams<Commands::UpdateAnglesGroupCommandParams>();
    updateGroup.groupGuid = groupReply.groupGuid;
    updateGroup.primaryAngle = Guid(clips.at(5).umId);
    EXPECT_EQ(session.AskData("UpdateAnglesGroupCommand", updateGroup).Final<Commands::AnglesGroupCommandReply>().status, kOk);
    EXPECT_EQ(session.inbox.WaitFor<Events::AnglesGroupUpdateFinishedEventArgs>()
                  .anglesGroup.angles.at(0)
                  .clipGuid,
              Guid(clips.at(5).umId));

    auto deleteGroup = NewParams<Commands::DeleteAnglesGroupCommandParams>();
    deleteGroup.groupGuid = groupReply.groupGuid;
    EXPECT_EQ(session.AskData("DeleteAnglesGroupCommand", deleteGroup).Final<Commands::AnglesGroupCommandReply>().status, kOk);
    EXPECT_EQ(session.inbox.WaitFor<Events::AnglesGroupDeletionFinishedEventArgs>().groupGuid,
              groupReply.groupGuid);
    EXPECT_EQ(session.AskData("DeleteAnglesGroupCommand", deleteGroup).Final<Commands::AnglesGroupCommandReply>().status, Status(1, 4));

    auto createPlaylist = NewParams<Commands::CreatePlaylistsCommandParams>();
    createPlaylist.playlists.resize(1);
    createPlaylist.playlists[0].sequence.name =
        Plexis::Data::Clips::AsciiOrUtf16String::Ascii("Highlights");
    createPlaylist.playlists[0].audioVideoTrack.elements.emplace(2);
    const auto made = session.AskData("CreatePlaylistsCommand", createPlaylist);
    const auto playlist = made.Final<Commands::PlaylistCommandReply>().results.at(0).playlist;
    const Guid playlistId(playlist.sequence.umId);

    auto get = NewParams<Commands::GetPlaylistsCommandParams>();
    get.idFilter = playlistId;
    get.elementMode = 1;
    const auto listed = session.AskData("GetPlaylistsCommand", get);
    const auto& filtered = listed.Final<Commands::GetPlaylistsCommandReply>().playlists;
    ASSERT_EQ(filtered.size(), 1u);
    EXPECT_EQ(filtered[0].sequence.name.data, "Highlights");
    EXPECT_FALSE(filtered[0].audioVideoTrack.elements.has_value());

    auto updatePlaylist = NewParams<Commands::UpdatePlaylistsCommandParams>();
    updatePlaylist.params.push_back({playlist, playlist});
    updatePlaylist.params[0].newPlaylist.sequence.isFixedDuration = true;
    EXPECT_TRUE(session.AskData("UpdatePlaylistsCommand", updatePlaylist).Final<Commands::PlaylistCommandReply>().results.at(0).playlist.sequence.isFixedDuration);
    auto deletePlaylist = NewParams<Commands::DeletePlaylistsCommandParams>();
    deletePlaylist.playlists = {playlistId, playlistId};
    const auto removed = session.AskData("DeletePlaylistsCommand", deletePlaylist);
    const auto& removal = removed.Final<Commands::PlaylistCommandReply>().results;
    EXPECT_EQ(removal.at(0).status, kOk);
    EXPECT_EQ(removal.at(1).status, Status(1, 4));

    auto set = NewParams<Commands::SetMultiviewerDataCommandParams>();
    set.playersDataOverrides[kPlayer].playerGuid = kPlayer;
    set.playersDataOverrides[kPlayer].message = "ON AIR";
    set.playersDataOverrides[kPlayer].controlMode = 2;
    set.playersDataOverrides[kRecorder].playerGuid = kRecorder;
    ExpectResults("SetMultiviewerDataCommand", set, {{kPlayer, kOk}, {kRecorder, Status(1, 2)}});
    const auto data = session.AskChannel("GetMultiviewerDataCommand",
                                         NewParams<Commands::GetMultiviewerDataCommandParams>());
    const auto& overrides = data.Final<Commands::GetMultiviewerDataCommandReply>();
    EXPECT_EQ(overrides.playerDataOverrides.at(kPlayer).message, "ON AIR");
    EXPECT_EQ(overrides.playerDataOverrides.at(kPlayer).playerGuid, kPlayer);
    EXPECT_FALSE(overrides.playerDataOverrides.at(kOtherPlayer).message.has_value());
    EXPECT_EQ(overrides.status, kOk);
}

TEST_F(SimulatorCommandsTest, ServersComingAndGoingArePublished) {
    const int added = session.simulator->AddServer();
    EXPECT_EQ(added, 3);
    EXPECT_EQ(session.inbox.WaitFor<Events::ServerAddedEventArgs>().server.name, "replay-3");

    ASSERT_TRUE(session.simulator->DropOffNetwork(1));
    EXPECT_EQ(session.inbox.WaitFor<Events::DisconnectedFromNetworkEventArgs>().serverId, 1);
    auto play = NewParams<Commands::PlayCommandParams>();
    play.players = {kPlayer};
    ExpectResults("PlayCommand", play, {{kPlayer, Status(1, 8)}});
    ASSERT_TRUE(session.simulator->ReturnToNetwork(1));
    session.inbox.WaitFor<Events::ServerAddedEventArgs>(
        [](const Events::ServerAddedEventArgs& args) { return args.serverId == 1; });

    ASSERT_TRUE(session.simulator->RemoveServer(2));
    EXPECT_EQ(session.inbox.WaitFor<Events::ServerRemovedEventArgs>().serverId, 2);
    EXPECT_FALSE(session.simulator->RemoveServer(2));
    const auto servers = session.AskData("GetServersCommand",
                                         NewParams<Commands::GetServersCommandParams>());
    EXPECT_EQ(servers.Final<Commands::GetServersCommandReply>().servers.size(), 2u);
}

}  // namespace
}  // namespace Korvo::Testing

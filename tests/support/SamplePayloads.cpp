#include "support/SamplePayloads.h"

#include <stdexcept>

#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

#include "support/Samples.h"

namespace Korvo::Testing {
namespace {

using namespace Plexis::Tessel::HighLevelOperations::Commands;
using namespace Plexis::Notification;
using Plexis::Data::Guid;
using ChannelGuid = Plexis::Data::Channels::Guid;
namespace Thrift = Plexis::Tessel::Serialization::Thrift;

// Encodes `value` into its wire record `W` as a server would.
template <class W, class Domain>
std::string Encode(const Domain& value) {
    W wire;
    const auto result = Thrift::ToThriftConverter<Domain, W>().To(value, wire);
    if (!result.success) {
        throw std::logic_error("sample does not encode: " + result.message);
    }
    const auto buffer = Common::Serialization::SerializerImpl<W>().Serialize(wire);
    return {reinterpret_cast<const char*>(buffer->Pointer()), buffer->Size()};
}

template <class W, class Domain>
void Add(std::vector<SamplePayload>& payloads, const std::string& name, const Domain& value,
         bool alsoInParts = false) {
    payloads.push_back({name, Encode<W>(value)});
    if (alsoInParts) {
        payloads.push_back({"[part]" + name, payloads.back().bytes});
    }
}

}  // namespace

std::vector<SamplePayload> SampleReplyPayloads() {
    namespace Wire = Thrift::Commands::Generated;
    const Guid id("cmd-1");
    std::vector<SamplePayload> payloads;
    Add<Wire::SuccessReply>(payloads, "SuccessReply", SuccessReply(id));
    FailureReply failure(id);
    failure.message = "player busy";
    Add<Wire::FailureReply>(payloads, "FailureReply", failure);
    UnknownCommandReply unknown;
    unknown.message = "no such command";
    Add<Wire::UnknownCommandReply>(payloads, "UnknownCommand", unknown);

    ChannelCommandReply channels(id);
    channels.Add({ChannelGuid::PlayerOf(1, 0), Samples::Status(1)});
    channels.Add({ChannelGuid::RecorderOf(1, 2), Samples::Status(2)});
    Add<Wire::ChannelCommandReply>(payloads, "ChannelCommandReply", channels, true);
    GetChannelsCommandReply states(id);
    states.playerStates[ChannelGuid::PlayerOf(1, 0)] = Samples::PlayerState(1);
    states.recorderStates[ChannelGuid::RecorderOf(1, 0)] = Samples::RecorderState(2);
    Add<Wire::GetChannelsCommandReply>(payloads, "GetChannelsCommandReply", states);
    GetMultiviewerDataCommandReply multiviewer(id);
    multiviewer.playerDataOverrides[ChannelGuid::PlayerOf(1, 0)] =
        Samples::Overrides(ChannelGuid::PlayerOf(1, 0));
    multiviewer.status = Samples::Status(3);
    Add<Wire::GetMultiviewerDataCommandReply>(payloads, "GetMultiviewerDataCommandReply",
                                              multiviewer);

    ClipCommandReply clips(id);
    clips.results = {{Samples::Status(4), Samples::Clip(1)}};
    Add<Wire::ClipCommandReply>(payloads, "ClipCommandReply", clips, true);
    PlaylistCommandReply playlists(id);
    playlists.results = {{Samples::Status(5), Samples::Playlist(1)}};
    Add<Wire::PlaylistCommandReply>(payloads, "PlaylistCommandReply", playlists, true);
    GetClipsCommandReply listing(id);
    listing.marker = 42;
    listing.clips = {Samples::Clip(2)};
    Add<Wire::GetClipsCommandReply>(payloads, "GetClipsCommandReply", listing, true);
    GetTrainsCommandReply trains(id);
    trains.marker = -1;
    trains.trains = {Samples::Train(1)};
    Add<Wire::GetTrainsCommandReply>(payloads, "GetTrainsCommandReply", trains);
    GetPlaylistsCommandReply playlistListing(id);
    playlistListing.playlists = {Samples::Playlist(2)};
    Add<Wire::GetPlaylistsCommandReply>(payloads, "GetPlaylistsCommandReply", playlistListing);
    GetServersCommandReply servers(id);
    servers.servers = {Samples::Server(1)};
    Add<Wire::GetServersCommandReply>(payloads, "GetServersCommandReply", servers);
    GetAnglesGroupsCommandReply groups(id);
    groups.anglesGroups = {Samples::AnglesGroup(1)};
    Add<Wire::GetAnglesGroupsCommandReply>(payloads, "GetAnglesGroupsCommandReply", groups, true);
    AnglesGroupCommandReply group(id);
    group.groupGuid = Plexis::Data::Clips::Groups::Guid("group-1");
    group.status = Samples::Status(6);
    group.clipCommandReply = clips;
    Add<Wire::AnglesGroupCommandReply>(payloads, "AnglesGroupCommandReply", group, true);
    return payloads;
}

std::vector<SamplePayload> SampleNotificationPayloads() {
    namespace Wire = Thrift::Notifier::Generated;
    std::vector<SamplePayload> payloads;
    ClipCreationEventArgs creation;
    creation.commandGuid = Guid("cmd");
    creation.clip = Samples::Clip(1);
    Add<Wire::ClipCreationStartedEventArgs>(payloads, "ClipCreationStarted", creation);
    ClipCreationFinishedEventArgs created;
    created.clip = Samples::Clip(2);
    Add<Wire::ClipCreationFinishedEventArgs>(payloads, "ClipCreationFinished", created);
    ClipUpdateFinishedEventArgs updated;
    updated.oldClip = Samples::Clip(3);
    updated.newClip = Samples::Clip(4);
    Add<Wire::ClipUpdateFinishedEventArgs>(payloads, "ClipUpdateFinished", updated);
    Add<Wire::ClipDeletionFinishedEventArgs>(payloads, "ClipDeletionFinished",
                                             ClipDeletionFinishedEventArgs());
    Add<Wire::ClipMoveStartedEventArgs>(payloads, "ClipMoveStarted", ClipMoveEventArgs());
    Add<Wire::ClipMoveFinishedEventArgs>(payloads, "ClipMoveFinished", ClipMoveFinishedEventArgs());
    Add<Wire::MassClipUpdateFinishedEventArgs>(payloads, "MassClipUpdateFinished",
                                               MassClipUpdateEventArgs());
    Add<Wire::MassClipDeletionFinishedEventArgs>(payloads, "MassClipDeletionFinished",
                                                 MassClipDeletionEventArgs());
    AnglesGroupCreationFinishedEventArgs group;
    group.anglesGroup = Samples::AnglesGroup(1);
    Add<Wire::AnglesGroupCreationFinishedEventArgs>(payloads, "AnglesGroupCreationFinished", group);
    AnglesGroupUpdateFinishedEventArgs groupUpdate;
    groupUpdate.anglesGroup = Samples::AnglesGroup(2);
    Add<Wire::AnglesGroupUpdateFinishedEventArgs>(payloads, "AnglesGroupUpdateFinished",
                                                  groupUpdate);
    AnglesGroupDeletionFinishedEventArgs deleted;
    deleted.groupGuid = Plexis::Data::Clips::Groups::Guid("group-1");
    Add<Wire::AnglesGroupDeletionFinishedEventArgs>(payloads, "AnglesGroupDeletionFinished",
                                                    deleted);
    RecordingRangesChangedEventArgs ranges;
    ranges.channelGuid = ChannelGuid::RecorderOf(1, 2);
    ranges.ranges = Samples::Train(1).recordingRanges;
    Add<Wire::RecordingRangesChangedEventArgs>(payloads, "RecordingRangesChanged", ranges);
    RecorderStateChangedEventArgs recorder;
    recorder.channelGuid = ChannelGuid::RecorderOf(1, 2);
    recorder.state = Samples::RecorderState(1);
    Add<Wire::RecorderStateChangedEventArgs>(payloads, "RecorderStateChanged", recorder);
    PlayerStateChangedEventArgs player;
    player.channelGuid = ChannelGuid::PlayerOf(1, 3);
    player.state = Samples::PlayerState(1);
    Add<Wire::PlayerStateChangedEventArgs>(payloads, "PlayerStateChanged", player);
    ServerAddedEventArgs added;
    added.serverId = 4;
    added.server = Samples::Server(4);
    Add<Wire::ServerAddedEventArgs>(payloads, "ServerAdded", added);
    ServerRemovedEventArgs removed;
    removed.serverId = 5;
    Add<Wire::ServerRemovedEventArgs>(payloads, "ServerRemoved", removed);
    DisconnectedFromNetworkEventArgs disconnected;
    disconnected.serverId = 6;
    Add<Wire::DisconnectedFromNetworkEventArgs>(payloads, "DisconnectedFromNetwork", disconnected);
    return payloads;
}

}  // namespace Korvo::Testing

// Catalogue commands: clips, trains, servers, playlists and angles groups, listed, made, changed
// and deleted, with the notifications that tell every client of the change.
#include "Model.h"

#include <algorithm>

namespace Korvo::Plexis::Tessel::Simulator {

using Data::Clips::Clip;
namespace Events = Notification;

template <class Args, class Items, class ServerOf>
bool Model::PublishedAsMass(const Data::Guid& commandGuid, const Items& items, ServerOf serverOf) {
    if (items.size() <= options.massThreshold) {
        return false;
    }
    std::map<int, std::int64_t> perServer;
    for (const auto& item : items) {
        ++perServer[serverOf(item)];
    }
    for (const auto& [server, count] : perServer) {
        PublishCommandEvent<Args>(commandGuid, server, 0,
                                  [count = count](Args& args) { args.clipCount = count; });
    }
    return true;
}

void Model::Handle(const Commands::GetClipsCommandParams& params) {
    Commands::GetClipsCommandReply reply(params.commandGuid);
    reply.marker = revision;
    reply.clips.reserve(clips.size());
    for (const auto& [id, entry] : clips) {
        reply.clips.push_back(entry.clip);
    }
    Answer(std::move(reply));
}

void Model::Handle(const Commands::GetTrainsCommandParams& params) {
    Commands::GetTrainsCommandReply reply(params.commandGuid);
    reply.marker = revision;
    const std::int64_t now = Now();
    for (const auto& [id, recorder] : recorders) {
        reply.trains.push_back(recorder.train);
        if (recorder.recording) {
            auto& range = reply.trains.back().recordingRanges.back();
            range.outTimepoint = now;
            range.outTimecode = TimecodeOf(now);
        }
    }
    Answer(reply);
}

void Model::Handle(const Commands::GetServersCommandParams& params) {
    // Range 0 lists every server; any other value only those on the network.
    Commands::GetServersCommandReply reply(params.commandGuid);
    for (const auto& [id, server] : servers) {
        if (params.serverRange == 0 || server.online) {
            reply.servers.push_back(server.info);
        }
    }
    Answer(reply);
}

void Model::Handle(const Commands::GetPlaylistsCommandParams& params) {
    // Element mode 0 gives whole playlists; any other value leaves their elements out.
    Commands::GetPlaylistsCommandReply reply(params.commandGuid);
    reply.marker = revision;
    for (const auto& [id, playlist] : playlists) {
        if (params.idFilter && params.idFilter->GetValue() != id) {
            continue;
        }
        reply.playlists.push_back(playlist);
        if (params.elementMode != 0) {
            reply.playlists.back().audioVideoTrack.elements.reset();
        }
    }
    Answer(reply);
}

void Model::Handle(const Commands::DeleteClipsCommandParams& params) {
    Commands::ClipCommandReply reply(params.commandGuid);
    std::vector<ClipEntry> deleted;
    for (const auto& id : params.clips) {
        Commands::ClipResult result;
        const auto found = clips.find(id.GetValue());
        if (found == clips.end()) {
            result.status = Outcome::kUnknownMaterial;
            result.clip.umId = id.GetValue();
        } else if (std::any_of(players.begin(), players.end(), [&](const auto& entry) {
                       return entry.second.clipId == id.GetValue();
                   })) {
            result.status = Outcome::kInUse;
            result.clip = found->second.clip;
        } else {
            result.status = Outcome::kOk;
            result.clip = found->second.clip;
            deleted.push_back(std::move(found->second));
            clips.erase(found);
            Changed();
        }
        reply.results.push_back(std::move(result));
    }
    Answer(std::move(reply), [&] {
        if (PublishedAsMass<Events::MassClipDeletionEventArgs>(
                params.commandGuid, deleted,
                [](const ClipEntry& entry) { return entry.serverId; })) {
            return;
        }
        int sequence = 0;
        for (const auto& entry : deleted) {
            PublishCommandEvent<Events::ClipDeletionFinishedEventArgs>(
                params.commandGuid, entry.serverId, sequence++,
                [&](Events::ClipDeletionFinishedEventArgs& args) { args.clip = entry.clip; });
        }
    });
}

Commands::ClipCommandReply Model::CreateClips(const Commands::CreateClipsCommandParams& params) {
    Commands::ClipCommandReply reply(params.commandGuid);
    int sequence = 0;
    for (const auto& create : params.clips) {
        Commands::ClipResult result;
        result.clip = create.clip;
        Clip& clip = result.clip;
        const bool blank = clip.umId.find_first_not_of(' ') == std::string::npos;
        if (blank) {
            clip.umId = NewId(Clip::kUmIdWidth);
        }
        // The source is a clip or a recorder's train; the new clip takes its bounds when it has
        // none of its own.
        const Clip* source = nullptr;
        int server = 1;
        if (const auto found = clips.find(create.sourceId.GetValue()); found != clips.end()) {
            source = &found->second.clip;
            server = found->second.serverId;
        }
        for (const auto& [id, recorder] : recorders) {
            if (recorder.train.clip.umId == create.sourceId.GetValue()) {
                source = &recorder.train.clip;
                server = id.GetServer();
            }
        }
        if (clips.count(clip.umId) != 0) {
            result.status = Outcome::kAlreadyExists;
        } else if (!create.sourceId.IsEmpty() && source == nullptr) {
            result.status = Outcome::kUnknownMaterial;
        } else if (clip.outBoundField < clip.inBoundField) {
            result.status = Outcome::kInvalidArgument;
        } else {
            if (source != nullptr && clip.outBoundField == 0) {
                clip.inBoundField = source->inBoundField;
                clip.outBoundField = source->outBoundField;
            }
            if (create.setTimecodes) {
                clip.inBoundTodTimecode = clip.inBoundUserTimecode = TimecodeOf(clip.inBoundField);
                clip.inBoundTimepoint = clip.inBoundField;
            }
            result.status = Outcome::kOk;
            clips[clip.umId] = {clip, server};
            Changed();
            const auto started = PublishCommandEvent<Events::ClipCreationEventArgs>(
                params.commandGuid, server, sequence++,
                [&](Events::ClipCreationEventArgs& args) {
                    args.clip = clip;
                    if (source != nullptr) {
                        args.sourceClip = *source;
                    }
                    args.inTimecode = TimecodeOf(clip.inBoundField);
                    args.outTimecode = TimecodeOf(clip.outBoundField);
                });
            PublishFinished<Events::ClipCreationFinishedEventArgs>(started, sequence++);
        }
        reply.results.push_back(std::move(result));
    }
    return reply;
}

void Model::Handle(const Commands::CreateClipsCommandParams& params) {
    Answer(CreateClips(params));
}

void Model::Handle(const Commands::UpdateClipsCommandParams& params) {
    Commands::ClipCommandReply reply(params.commandGuid);
    struct Change {
        Clip before;
        Clip after;
        int server;
    };
    std::vector<Change> changes;
    for (const auto& update : params.clips) {
        Commands::ClipResult result;
        const auto found = clips.find(update.oldClip.umId);
        if (found == clips.end()) {
            result.status = Outcome::kUnknownMaterial;
            result.clip = update.oldClip;
        } else {
            Clip after = update.newClip;
            after.umId = found->second.clip.umId;  // a clip keeps its identifier
            changes.push_back({found->second.clip, after, found->second.serverId});
            found->second.clip = after;
            Changed();
            result.status = Outcome::kOk;
            result.clip = after;
        }
        reply.results.push_back(std::move(result));
    }
    Answer(std::move(reply), [&] {
        if (PublishedAsMass<Events::MassClipUpdateEventArgs>(
                params.commandGuid, changes, [](const Change& change) { return change.server; })) {
            return;
        }
        int sequence = 0;
        for (const auto& change : changes) {
            if (change.before.kivIndex != change.after.kivIndex) {
                // A new storage slot: the clip moves.
                const auto moving = PublishCommandEvent<Events::ClipMoveEventArgs>(
                    params.commandGuid, change.server, sequence++,
                    [&](Events::ClipMoveEventArgs& args) {
                        args.oldClip = change.before;
                        args.newClip = change.after;
                    });
                PublishFinished<Events::ClipMoveFinishedEventArgs>(moving, sequence++);
            } else {
                PublishCommandEvent<Events::ClipUpdateFinishedEventArgs>(
                    params.commandGuid, change.server, sequence++,
                    [&](Events::ClipUpdateFinishedEventArgs& args) {
                        args.oldClip = change.before;
                        args.newClip = change.after;
                        args.succeeded = true;
                    });
            }
        }
    });
}

void Model::Handle(const Commands::PingCommandParams& params) {
    Answer(Commands::SuccessReply(params.commandGuid));
}

void Model::Handle(const Commands::GetAnglesGroupsCommandParams& params) {
    Commands::GetAnglesGroupsCommandReply reply(params.commandGuid);
    reply.marker = revision;
    for (const auto& [id, group] : anglesGroups) {
        reply.anglesGroups.push_back(group);
    }
    Answer(std::move(reply));
}

void Model::Handle(const Commands::DeleteAnglesGroupCommandParams& params) {
    Commands::AnglesGroupCommandReply reply(params.commandGuid);
    reply.groupGuid = Data::Clips::Groups::Guid(params.groupGuid);
    reply.clipCommandReply.commandGuid = params.commandGuid;
    const auto found = anglesGroups.find(params.groupGuid.GetValue());
    if (found == anglesGroups.end()) {
        reply.status = Outcome::kUnknownMaterial;
        Answer(reply);
        return;
    }
    anglesGroups.erase(found);
    Changed();
    reply.status = Outcome::kOk;
    Answer(reply, [&] {
        PublishCommandEvent<Events::AnglesGroupDeletionFinishedEventArgs>(
            params.commandGuid, 1, 0, [&](Events::AnglesGroupDeletionFinishedEventArgs& args) {
                args.groupGuid = reply.groupGuid;
            });
    });
}

void Model::Handle(const Commands::UpdateAnglesGroupCommandParams& params) {
    // The primary angle is the group's entry 0, the secondary its entry 1.
    Commands::AnglesGroupCommandReply reply(params.commandGuid);
    reply.groupGuid = Data::Clips::Groups::Guid(params.groupGuid);
    reply.clipCommandReply.commandGuid = params.commandGuid;
    const auto found = anglesGroups.find(params.groupGuid.GetValue());
    const auto known = [&](const std::optional<Data::Guid>& angle) {
        return !angle || clips.count(angle->GetValue()) != 0;
    };
    if (found == anglesGroups.end() || !known(params.primaryAngle) ||
        !known(params.secondaryAngle)) {
        reply.status = Outcome::kUnknownMaterial;
        Answer(reply);
        return;
    }
    auto& group = found->second;
    int index = 0;
    for (const auto* angle : {&params.primaryAngle, &params.secondaryAngle}) {
        if (*angle) {
            group.angles[index] = {**angle, clips.at((*angle)->GetValue()).clip.camera};
        }
        ++index;
    }
    Changed();
    reply.status = Outcome::kOk;
    Answer(reply, [&] {
        PublishCommandEvent<Events::AnglesGroupUpdateFinishedEventArgs>(
            params.commandGuid, 1, 0,
            [&](Events::AnglesGroupUpdateFinishedEventArgs& args) { args.anglesGroup = group; });
    });
}

void Model::Handle(const Commands::CreateAnglesGroupCommandParams& params) {
    Commands::AnglesGroupCommandReply reply(params.commandGuid);
    reply.clipCommandReply = CreateClips(params.creationParams);
    const auto& results = reply.clipCommandReply.results;
    const bool allMade = !results.empty() && std::all_of(results.begin(), results.end(),
                                                         [](const Commands::ClipResult& result) {
                                                             return result.status == Outcome::kOk;
                                                         });
    if (!allMade) {
        reply.status = results.empty() ? Outcome::kInvalidArgument : Outcome::kUnknownMaterial;
        Answer(reply);
        return;
    }
    Data::Clips::Groups::AnglesGroup group;
    group.groupGuid = Data::Clips::Groups::Guid(NewId(32));
    std::int32_t index = 0;
    for (const auto& result : results) {
        group.angles[index++] = {Data::Guid(result.clip.umId), result.clip.camera};
    }
    anglesGroups[group.groupGuid.GetValue()] = group;
    Changed();
    reply.groupGuid = group.groupGuid;
    reply.status = Outcome::kOk;
    Answer(reply, [&] {
        PublishCommandEvent<Events::AnglesGroupCreationFinishedEventArgs>(
            params.commandGuid, 1, 0,
            [&](Events::AnglesGroupCreationFinishedEventArgs& args) { args.anglesGroup = group; });
    });
}

void Model::Handle(const Commands::CreatePlaylistsCommandParams& params) {
    Commands::PlaylistCommandReply reply(params.commandGuid);
    for (const auto& playlist : params.playlists) {
        Commands::PlaylistResult result;
        result.playlist = playlist;
        auto& umId = result.playlist.sequence.umId;
        if (umId.find_first_not_of(' ') == std::string::npos) {
            umId = NewId(Clip::kUmIdWidth);
        }
        if (playlists.count(umId) != 0) {
            result.status = Outcome::kAlreadyExists;
        } else {
            playlists[umId] = result.playlist;
            Changed();
            result.status = Outcome::kOk;
        }
        reply.results.push_back(std::move(result));
    }
    Answer(std::move(reply));
}

void Model::Handle(const Commands::DeletePlaylistsCommandParams& params) {
    Commands::PlaylistCommandReply reply(params.commandGuid);
    for (const auto& id : params.playlists) {
        Commands::PlaylistResult result;
        const auto found = playlists.find(id.GetValue());
        if (found == playlists.end()) {
            result.status = Outcome::kUnknownMaterial;
            result.playlist.sequence.umId = id.GetValue();
        } else if (std::any_of(players.begin(), players.end(), [&](const auto& entry) {
                       return entry.second.sequenceId == id.GetValue();
                   })) {
            result.status = Outcome::kInUse;
            result.playlist = found->second;
        } else {
            result.status = Outcome::kOk;
            result.playlist = std::move(found->second);
            playlists.erase(found);
            Changed();
        }
        reply.results.push_back(std::move(result));
    }
    Answer(std::move(reply));
}

void Model::Handle(const Commands::UpdatePlaylistsCommandParams& params) {
    Commands::PlaylistCommandReply reply(params.commandGuid);
    for (const auto& update : params.params) {
        Commands::PlaylistResult result;
        const auto found = playlists.find(update.oldPlaylist.sequence.umId);
        if (found == playlists.end()) {
            result.status = Outcome::kUnknownMaterial;
            result.playlist = update.oldPlaylist;
        } else {
            result.playlist = update.newPlaylist;
            result.playlist.sequence.umId = found->first;  // a playlist keeps its identifier
            found->second = result.playlist;
            Changed();
            result.status = Outcome::kOk;
        }
        reply.results.push_back(std::move(result));
    }
    Answer(std::move(reply));
}
bool Model::OperatorRenameClip(const std::string& umId, const std::string& name) {
    const auto found = clips.find(umId);
    if (found == clips.end()) {
        return false;
    }
    Commands::UpdateClipsCommandParams update;
    update.commandGuid = Data::Guid("operator");
    Commands::UpdateClipParams change;
    change.oldClip = found->second.clip;
    change.newClip = found->second.clip;
    change.newClip.name = Data::Clips::AsciiOrUtf16String::Ascii(name);
    update.clips.push_back(std::move(change));
    Handle(update);
    return true;
}

}  // namespace Korvo::Plexis::Tessel::Simulator

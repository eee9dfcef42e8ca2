// Channel commands: players play, go live, chain, dial, step, synchronise, load and go idle;
// recorders start and stop; channel listings and multiviewer data.
#include "Model.h"

#include <algorithm>

namespace Korvo::Plexis::Tessel::Simulator {

using Data::OperationStatus;
using Data::Channels::LoadBoundary;
using Data::Clips::AsciiOrUtf16String;
using Data::Clips::Clip;
namespace Events = Notification;

namespace {

const Data::Channels::Guid& KeyOf(const Data::Channels::Guid& id) { return id; }
template <class Value>
const Data::Channels::Guid& KeyOf(const std::pair<const Data::Channels::Guid, Value>& entry) {
    return entry.first;
}

// The same player with nothing loaded: what it keeps are its identity and its overrides.
PlayerEntry Unloaded(const PlayerEntry& player) {
    PlayerEntry fresh;
    fresh.id = player.id;
    fresh.name = player.name;
    fresh.overrides = player.overrides;
    return fresh;
}

template <class Value>
const Value& ValueOf(const std::pair<const Data::Channels::Guid, Value>& entry) {
    return entry.second;
}
inline const Data::Channels::Guid& ValueOf(const Data::Channels::Guid& id) { return id; }

}  // namespace

template <class Ids, class Change>
void Model::ForEachPlayer(const Data::Guid& commandGuid, const Ids& ids, Change change) {
    Results results;
    std::vector<const PlayerEntry*> changed;
    for (const auto& item : ids) {
        Commands::ChannelResult result;
        result.channelGuid = KeyOf(item);
        if (auto* player = FindPlayer(result.channelGuid, result.status)) {
            result.status = change(*player, ValueOf(item));
            if (result.status == Outcome::kOk) {
                changed.push_back(player);
            }
        }
        results.push_back(result);
    }
    Answer(ChannelAnswer{commandGuid, results}, [&] {
        for (const auto* player : changed) {
            PublishPlayer(*player);
        }
    });
}

template <class Ids, class Change>
void Model::ForEachRecorder(const Data::Guid& commandGuid, const Ids& ids, Change change) {
    Results results;
    for (const auto& id : ids) {
        Commands::ChannelResult result;
        result.channelGuid = id;
        if (auto* recorder = FindRecorder(id, result.status)) {
            result.status = change(*recorder);
        }
        results.push_back(result);
    }
    Answer(ChannelAnswer{commandGuid, results});
}

void Model::Handle(const Commands::PlayCommandParams& params) {
    ForEachPlayer(params.commandGuid, params.players, [&](PlayerEntry& player, const ChannelId&) {
        if (params.speedDen == 0) {
            return Outcome::kInvalidArgument;
        }
        return Move(player, params.speedNum, params.speedDen, Playing);
    });
}

void Model::Handle(const Commands::LiveCommandParams& params) {
    ForEachPlayer(params.commandGuid, params.players,
                  [&](PlayerEntry& player, const Data::Guid& feed) {
                      // The feed is a recorder's channel text or the identifier of its train.
                      const RecorderEntry* source = nullptr;
                      for (const auto& [id, recorder] : recorders) {
                          if (id.ToString() == feed.GetValue() ||
                              recorder.train.clip.umId == feed.GetValue()) {
                              source = &recorder;
                          }
                      }
                      if (source == nullptr) {
                          return Outcome::kUnknownMaterial;
                      }
                      PlayerEntry live = Unloaded(player);
                      live.mode = Live;
                      live.material = LiveFeed;
                      live.liveFeed = source->id.ToString();
                      live.liveTimepoint = Now();
                      player = live;
                      return Outcome::kOk;
                  });
}

void Model::Handle(const Commands::ChainCommandParams& params) {
    ForEachPlayer(params.commandGuid, params.players,
                  [&](PlayerEntry& player, const Data::Guid& material) {
                      if (!Loaded(player)) {
                          return Outcome::kNotLoaded;
                      }
                      if (clips.count(material.GetValue()) == 0) {
                          return Outcome::kUnknownMaterial;
                      }
                      // The chained clip as it will be loaded: the time point resolved as a
                      // load's cue (0: its in point) and the boundaries checked now.
                      PlayerEntry next = player;
                      if (const auto status =
                              LoadMaterial(next, material.GetValue(), params.timepoint,
                                           params.inBoundary, params.outBoundary);
                          status != Outcome::kOk) {
                          return status;
                      }
                      player.chainedClipId = material.GetValue();
                      player.chainTimepoint = next.cueTimepoint;
                      player.chainIn = params.inBoundary;
                      player.chainOut = params.outBoundary;
                      return Outcome::kOk;
                  });
}

void Model::Handle(const Commands::DialCommandParams& params) {
    ForEachPlayer(params.commandGuid, params.players, [&](PlayerEntry& player, const ChannelId&) {
        // The velocity is in hundredths of normal speed, backwards when negative.
        return Move(player, params.velocity, 100, Dialing);
    });
}

void Model::Handle(const Commands::StepCommandParams& params) {
    ForEachPlayer(params.commandGuid, params.players, [&](PlayerEntry& player, const ChannelId&) {
        if (!Loaded(player)) {
            return Outcome::kNotLoaded;
        }
        Anchor(player, Now());
        player.mode = Cued;
        player.speedNum = 0;
        player.anchorPosition = std::clamp(player.anchorPosition + params.fieldCount,
                                           player.inPoint, player.outPoint);
        return Outcome::kOk;
    });
}

void Model::Handle(const Commands::SyncCommandParams& params) {
    OperationStatus sourceStatus = Outcome::kOk;
    const PlayerEntry* source = FindPlayer(params.sourcePlayer, sourceStatus);
    // A live source's players follow its feed; an idle one has nothing to give.
    if (source != nullptr && !Loaded(*source) && source->material != LiveFeed) {
        sourceStatus = Outcome::kNotLoaded;
    }
    const PlayerEntry sourceCopy = source != nullptr ? *source : PlayerEntry{};
    ForEachPlayer(params.commandGuid, params.players, [&](PlayerEntry& player, const ChannelId&) {
        if (sourceStatus != Outcome::kOk) {
            return sourceStatus;
        }
        PlayerEntry synced = sourceCopy;
        synced.id = player.id;
        synced.name = player.name;
        synced.overrides = player.overrides;
        const bool bounded = params.inBoundary != LoadBoundary{} ||
                             params.outBoundary != LoadBoundary{};
        if (bounded) {
            if (const auto status = Rebound(synced, params.inBoundary, params.outBoundary);
                status != Outcome::kOk) {
                return status;
            }
        }
        player = synced;
        return Outcome::kOk;
    });
}

void Model::Handle(const Commands::LoadClipsCommandParams& params) {
    ForEachPlayer(params.commandGuid, params.playersParameters,
                  [&](PlayerEntry& player, const Commands::LoadClipCommandParam& load) {
                      if (clips.count(load.clip.GetValue()) == 0) {
                          return Outcome::kUnknownMaterial;
                      }
                      return LoadMaterial(player, load.clip.GetValue(), load.timepoint,
                                          load.inBoundary, load.outBoundary);
                  });
}

void Model::Handle(const Commands::LoadSequencesCommandParams& params) {
    ForEachPlayer(params.commandGuid, params.playersParameters,
                  [&](PlayerEntry& player, const Commands::LoadSequenceCommandParam& load) {
                      if (playlists.count(load.sequence.GetValue()) == 0) {
                          return Outcome::kUnknownMaterial;
                      }
                      return LoadMaterial(player, load.sequence.GetValue(),
                                          load.durationFromBeginning, {}, {});
                  });
}

void Model::Handle(const Commands::SetLoadBoundariesCommandParams& params) {
    ForEachPlayer(params.commandGuid, params.playersParameters,
                  [&](PlayerEntry& player, const Commands::SetLoadBoundariesCommandParam& bounds) {
                      if (!Loaded(player)) {
                          return Outcome::kNotLoaded;
                      }
                      return Rebound(player, bounds.inBoundary, bounds.outBoundary);
                  });
}

void Model::Handle(const Commands::GoIdleCommandParams& params) {
    ForEachPlayer(params.commandGuid, params.players, [&](PlayerEntry& player, const ChannelId&) {
        PlayerEntry idle = Unloaded(player);
        idle.blackScreen = params.setBlackScreen;
        player = idle;
        return Outcome::kOk;
    });
}

void Model::Handle(const Commands::StartCommandParams& params) {
    ForEachRecorder(params.commandGuid, params.recorders, [&](RecorderEntry& recorder) {
        if (recorder.recording) {
            return Outcome::kAlreadyRecording;
        }
        const std::int64_t now = Now();
        recorder.recording = true;
        recorder.startTimepoint = now;
        recorder.lastRangesPublished = now;
        recorder.train.isRecording = true;
        recorder.train.recordingRanges.push_back({now, now, TimecodeOf(now), TimecodeOf(now)});
        PublishRecorder(recorder, params.commandGuid);
        PublishRanges(recorder);
        return Outcome::kOk;
    });
}

void Model::Handle(const Commands::StopCommandParams& params) {
    ForEachRecorder(params.commandGuid, params.recorders, [&](RecorderEntry& recorder) {
        if (!recorder.recording) {
            return Outcome::kNotRecording;
        }
        FinishRecording(recorder, params.commandGuid);
        return Outcome::kOk;
    });
}

void Model::FinishRecording(RecorderEntry& recorder, const Data::Guid& commandGuid) {
    const std::int64_t now = std::max(Now(), recorder.startTimepoint + 1);
    auto& range = recorder.train.recordingRanges.back();
    range.outTimepoint = now;
    range.outTimecode = TimecodeOf(now);
    recorder.recording = false;
    recorder.train.isRecording = false;

    // The recording becomes a clip of its own, cut from the train.
    Clip clip = SeededClip(static_cast<int>(clips.size()), recorder.id.GetServer());
    clip.name = AsciiOrUtf16String::Ascii("Rec " + recorder.name + " " +
                                          TimecodeOf(recorder.startTimepoint));
    clip.sourceUmId = recorder.train.clip.umId;
    clip.inBoundField = clip.shortInBoundField = recorder.startTimepoint;
    clip.outBoundField = clip.shortOutBoundField = now;
    clip.inBoundTimepoint = recorder.startTimepoint;
    clip.inBoundTodTimecode = clip.inBoundUserTimecode = clip.sourceInBoundTodTimecode =
        clip.sourceInBoundUserTimecode = TimecodeOf(recorder.startTimepoint);
    clip.camera = static_cast<std::int32_t>(recorder.id.GetChannel()) + 1;
    clip.preferentialCamera = clip.camera;

    const int server = recorder.id.GetServer();
    clips[clip.umId] = {clip, server};
    Changed();
    const auto started = PublishCommandEvent<Events::ClipCreationEventArgs>(
        commandGuid, server, 0, [&](Events::ClipCreationEventArgs& args) {
            args.channelNumber = static_cast<std::int32_t>(recorder.id.GetChannel());
            args.clip = clip;
            args.sourceClip = recorder.train.clip;
            args.inTimecode = TimecodeOf(clip.inBoundField);
            args.outTimecode = TimecodeOf(clip.outBoundField);
        });
    PublishFinished<Events::ClipCreationFinishedEventArgs>(started, 1);
    PublishRecorder(recorder, commandGuid);
    PublishRanges(recorder);
}

void Model::Handle(const Commands::GetChannelsCommandParams& params) {
    Commands::GetChannelsCommandReply reply(params.commandGuid);
    for (const auto& [id, player] : players) {
        reply.playerStates[id] = PlayerStateOf(player);
    }
    for (const auto& [id, recorder] : recorders) {
        reply.recorderStates[id] = RecorderStateOf(recorder);
    }
    Answer(reply);
}

void Model::Handle(const Commands::GetMultiviewerDataCommandParams& params) {
    Commands::GetMultiviewerDataCommandReply reply(params.commandGuid);
    for (const auto& [id, player] : players) {
        reply.playerDataOverrides[id] = player.overrides;
    }
    reply.status = Outcome::kOk;
    Answer(reply);
}

void Model::Handle(const Commands::SetMultiviewerDataCommandParams& params) {
    Results results;
    for (const auto& [id, overrides] : params.playersDataOverrides) {
        Commands::ChannelResult result;
        result.channelGuid = id;
        if (auto* player = FindPlayer(id, result.status)) {
            player->overrides = overrides;
            player->overrides.playerGuid = id;
            result.status = Outcome::kOk;
        }
        results.push_back(result);
    }
    Answer(ChannelAnswer{params.commandGuid, results});
}
bool Model::OperatorToggleChannel(const ChannelId& channel) {
    if (const auto player = players.find(channel); player != players.end()) {
        if (player->second.mode == Idle && !clips.empty()) {
            Commands::LoadClipsCommandParams load;
            load.commandGuid = Data::Guid("operator");
            load.playersParameters[channel].clip = Data::Guid(clips.begin()->first);
            Handle(load);
        } else {
            Commands::GoIdleCommandParams idle;
            idle.commandGuid = Data::Guid("operator");
            idle.players.insert(channel);
            Handle(idle);
        }
        return true;
    }
    if (const auto recorder = recorders.find(channel); recorder != recorders.end()) {
        if (recorder->second.recording) {
            Commands::StopCommandParams stop;
            stop.commandGuid = Data::Guid("operator");
            stop.recorders.insert(channel);
            Handle(stop);
        } else {
            Commands::StartCommandParams start;
            start.commandGuid = Data::Guid("operator");
            start.recorders.insert(channel);
            Handle(start);
        }
        return true;
    }
    return false;
}

}  // namespace Korvo::Plexis::Tessel::Simulator

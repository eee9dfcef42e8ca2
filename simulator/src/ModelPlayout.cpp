// Playout physics: how a player moves through what it has loaded, what a channel's state reads at
// a given moment, and what a channel publishes when it changes.
#include "Model.h"

#include <algorithm>

namespace Korvo::Plexis::Tessel::Simulator {

using Data::OperationStatus;
using Data::Channels::LoadBoundary;
namespace Events = Notification;

namespace {

constexpr std::int64_t kRecorderCapacity = 12 * 3600 * kFieldsPerSecond;

}  // namespace

bool Model::ServerOnline(int serverId) const {
    const auto found = servers.find(serverId);
    return found != servers.end() && found->second.online;
}

PlayerEntry* Model::FindPlayer(const ChannelId& id, OperationStatus& status) {
    const auto found = players.find(id);
    if (found == players.end()) {
        status = recorders.count(id) != 0 || recorders.count(ChannelId::RecorderOf(
                                                 id.GetServer(), id.GetChannel())) != 0
                     ? Outcome::kWrongChannelKind
                     : Outcome::kUnknownChannel;
        return nullptr;
    }
    if (!ServerOnline(id.GetServer())) {
        status = Outcome::kServerOffline;
        return nullptr;
    }
    return &found->second;
}

RecorderEntry* Model::FindRecorder(const ChannelId& id, OperationStatus& status) {
    const auto found = recorders.find(id);
    if (found == recorders.end()) {
        status = players.count(ChannelId::PlayerOf(id.GetServer(), id.GetChannel())) != 0
                     ? Outcome::kWrongChannelKind
                     : Outcome::kUnknownChannel;
        return nullptr;
    }
    if (!ServerOnline(id.GetServer())) {
        status = Outcome::kServerOffline;
        return nullptr;
    }
    return &found->second;
}

std::int64_t Model::Position(const PlayerEntry& player, std::int64_t now) const {
    if (player.mode == Live) {
        return now;
    }
    std::int64_t position = player.anchorPosition;
    if ((player.mode == Playing || player.mode == Dialing) && player.speedDen != 0) {
        position += (now - player.anchorTime) * player.speedNum / player.speedDen;
    }
    return std::clamp(position, player.inPoint, std::max(player.inPoint, player.outPoint));
}

void Model::Anchor(PlayerEntry& player, std::int64_t now) {
    player.anchorPosition = Position(player, now);
    player.anchorTime = now;
}

OperationStatus Model::ApplyBoundaries(PlayerEntry& player, const LoadBoundary& in,
                                       const LoadBoundary& out) {
    if ((in.absoluteTimepoint && in.relativeFieldCount) ||
        (out.absoluteTimepoint && out.relativeFieldCount)) {
        return Outcome::kInvalidArgument;
    }
    std::int64_t first = player.materialIn;
    std::int64_t last = player.materialOut;
    // Relative counts come from the network: a sum that does not fit is an invalid value.
    if (in.absoluteTimepoint) {
        first = *in.absoluteTimepoint;
    } else if (in.relativeFieldCount &&
               __builtin_add_overflow(player.materialIn, *in.relativeFieldCount, &first)) {
        return Outcome::kInvalidArgument;
    }
    if (out.absoluteTimepoint) {
        last = *out.absoluteTimepoint;
    } else if (out.relativeFieldCount &&
               __builtin_add_overflow(first, *out.relativeFieldCount, &last)) {
        return Outcome::kInvalidArgument;
    }
    if (first < player.materialIn || last > player.materialOut || first > last) {
        return Outcome::kInvalidArgument;
    }
    player.inPoint = first;
    player.outPoint = last;
    player.inBoundary = in;
    player.outBoundary = out;
    return Outcome::kOk;
}

OperationStatus Model::Move(PlayerEntry& player, std::int32_t speedNum, std::int32_t speedDen,
                            PlayMode moving) {
    if (!Loaded(player)) {
        return Outcome::kNotLoaded;
    }
    Anchor(player, Now());
    player.speedNum = speedNum;
    player.speedDen = speedDen;
    player.mode = speedNum == 0 ? Cued : moving;
    return Outcome::kOk;
}

OperationStatus Model::Rebound(PlayerEntry& player, const LoadBoundary& in,
                               const LoadBoundary& out) {
    PlayerEntry bounded = player;
    Anchor(bounded, Now());
    if (const auto status = ApplyBoundaries(bounded, in, out); status != Outcome::kOk) {
        return status;
    }
    bounded.anchorPosition = std::clamp(bounded.anchorPosition, bounded.inPoint, bounded.outPoint);
    player = bounded;
    return Outcome::kOk;
}

OperationStatus Model::LoadMaterial(PlayerEntry& player, const std::string& materialId,
                                    std::int64_t cue, const LoadBoundary& in,
                                    const LoadBoundary& out) {
    PlayerEntry loaded = player;
    if (const auto clip = clips.find(materialId); clip != clips.end()) {
        loaded.material = ClipMaterial;
        loaded.clipId = materialId;
        loaded.sequenceId.clear();
        loaded.materialIn = clip->second.clip.inBoundField;
        loaded.materialOut = clip->second.clip.outBoundField;
    } else if (const auto playlist = playlists.find(materialId); playlist != playlists.end()) {
        loaded.material = SequenceMaterial;
        loaded.sequenceId = materialId;
        loaded.clipId.clear();
        loaded.materialIn = 0;
        loaded.materialOut = playlist->second.sequence.durationWithEffects;
    } else {
        return Outcome::kUnknownMaterial;
    }
    if (const auto status = ApplyBoundaries(loaded, in, out); status != Outcome::kOk) {
        return status;
    }
    loaded.liveFeed.clear();
    loaded.chainedClipId.clear();
    loaded.mode = Cued;
    loaded.speedNum = 0;
    loaded.speedDen = 1;
    loaded.blackScreen = false;
    loaded.cueTimepoint = cue == 0 ? loaded.inPoint : std::clamp(cue, loaded.inPoint, loaded.outPoint);
    loaded.anchorPosition = loaded.cueTimepoint;
    loaded.anchorTime = Now();
    player = loaded;
    return Outcome::kOk;
}

Data::Channels::PlayerClipOnAir Model::OnAir(const std::string& clipId,
                                             std::int64_t position) const {
    Data::Channels::PlayerClipOnAir onAir;
    const auto found = clips.find(clipId);
    if (found == clips.end()) {
        return onAir;
    }
    onAir.clip = found->second.clip;
    onAir.position = position - onAir.clip.inBoundField;
    onAir.todTimecode = TimecodeOf(position);
    onAir.userTimecode = TimecodeOf(position);
    return onAir;
}

Data::Channels::PlayerState Model::PlayerStateOf(const PlayerEntry& player) const {
    const std::int64_t now = Now();
    const std::int64_t position = Position(player, now);
    Data::Channels::PlayerState state;
    state.timestamp = nowMs();
    state.channelNumber = static_cast<std::int32_t>(player.id.GetChannel());
    state.channelName = player.name;
    state.serverId = player.id.GetServer();
    state.playMode = player.mode;
    auto& info = state.infoOnAir;
    const bool moving = player.mode == Playing || player.mode == Dialing;
    info.speedNumerator = moving ? player.speedNum : 0;
    info.speedDenominator = moving ? player.speedDen : 1;
    info.playMode = player.mode;
    info.loopMode = 0;
    info.videoStandard = 1;
    info.controlMode = 1;
    info.timepoint = position;
    info.updateTimestamp = state.timestamp;
    if (Loaded(player)) {
        info.position = position - player.inPoint;
        info.inPoint = player.inPoint;
        info.outPoint = player.outPoint;
        info.duration = player.outPoint - player.inPoint;
        info.remaining = player.outPoint - position;
        state.inTimecode = TimecodeOf(player.inPoint);
        state.outTimecode = TimecodeOf(player.outPoint);
        state.remainingTimecode = DurationTimecodeOf(info.remaining);
        state.durationTimecode = DurationTimecodeOf(info.duration);
    }
    if (player.material == SequenceMaterial) {
        const auto& playlist = playlists.at(player.sequenceId);
        info.elementCount = playlist.audioVideoTrack.numberOfElements.value_or(0);
        info.sequencePosition = position;
        info.sequenceDuration = player.materialOut;
        state.loadedSequenceUmId = player.sequenceId;
    }
    if (player.material == ClipMaterial) {
        state.currentClip = OnAir(player.clipId, position);
        state.loadedClipUmId = player.clipId;
    }
    if (!player.chainedClipId.empty()) {
        state.nextClip = OnAir(player.chainedClipId, player.chainTimepoint);
    }
    state.cueTimepoint = player.cueTimepoint;
    state.currentTimepoint = position;
    state.liveTimepoint = player.liveTimepoint;
    state.chainTimepoint = player.chainTimepoint;
    if (player.material == LiveFeed) {
        const auto feed = recorders.find(*ChannelId::Parse(player.liveFeed));
        state.liveRecorderName = feed == recorders.end() ? "" : feed->second.train.recorderName;
    }
    state.currentTimecode = TimecodeOf(position);
    state.loadedMaterialType = player.material;
    state.inBoundary = player.inBoundary;
    state.outBoundary = player.outBoundary;
    return state;
}

Data::Channels::RecorderState Model::RecorderStateOf(const RecorderEntry& recorder) const {
    const std::int64_t now = Now();
    Data::Channels::RecorderState state;
    state.timestamp = nowMs();
    state.channelNumber = static_cast<std::int32_t>(recorder.id.GetChannel());
    state.channelName = recorder.name;
    state.serverId = recorder.id.GetServer();
    state.isRecording = recorder.recording;
    state.recordStartTimepoint = recorder.startTimepoint;
    state.currentTimepoint = now;
    state.currentTimecode = TimecodeOf(now);
    state.recordStartTimecode = TimecodeOf(recorder.startTimepoint);
    state.recordMode = 0;
    for (const auto& range : recorder.train.recordingRanges) {
        state.recordedFields += range.outTimepoint - range.inTimepoint;
    }
    if (recorder.recording) {
        state.recordedFields += now - recorder.train.recordingRanges.back().outTimepoint;
    }
    state.remainingFields = std::max<std::int64_t>(0, kRecorderCapacity - state.recordedFields);
    state.clip = recorder.train.clip;
    return state;
}

void Model::PublishPlayer(const PlayerEntry& player) {
    Events::PlayerStateChangedEventArgs args;
    args.channelGuid = player.id;
    args.serverId = player.id.GetServer();
    args.timestamp = nowMs();
    args.state = PlayerStateOf(player);
    emitter->Notify(ServerName(player.id.GetServer()), args);
}

void Model::PublishRecorder(const RecorderEntry& recorder, const Data::Guid&) {
    Events::RecorderStateChangedEventArgs args;
    args.channelGuid = recorder.id;
    args.serverId = recorder.id.GetServer();
    args.timestamp = nowMs();
    args.state = RecorderStateOf(recorder);
    emitter->Notify(ServerName(recorder.id.GetServer()), args);
}

void Model::PublishRanges(const RecorderEntry& recorder) {
    Events::RecordingRangesChangedEventArgs args;
    args.channelGuid = recorder.id;
    args.ranges = recorder.train.recordingRanges;
    args.isRecording = recorder.recording;
    args.isLoopRecording = recorder.train.isLoopRecording;
    emitter->Notify(ServerName(recorder.id.GetServer()), args);
}


bool Model::ContinueIntoChain(PlayerEntry& player, std::int64_t now) {
    // The fields played beyond the out point since it was reached carry into the next clip.
    if (player.speedDen == 0) {
        return false;
    }
    const std::int64_t travelled =
        player.anchorPosition + (now - player.anchorTime) * player.speedNum / player.speedDen;
    const std::int64_t beyond = std::max<std::int64_t>(0, travelled - player.outPoint);
    PlayerEntry next = player;
    if (LoadMaterial(next, player.chainedClipId, player.chainTimepoint, player.chainIn,
                     player.chainOut) != Outcome::kOk) {
        return false;  // the chained clip was deleted or changed meanwhile
    }
    next.mode = player.mode;
    next.speedNum = player.speedNum;
    next.speedDen = player.speedDen;
    next.anchorPosition = std::min(next.cueTimepoint + beyond, next.outPoint);
    next.anchorTime = now;
    player = next;
    return true;
}

void Model::Tick() {
    const std::int64_t now = Now();
    for (auto& [id, recorder] : recorders) {
        if (recorder.recording && now - recorder.lastRangesPublished >= kFieldsPerSecond) {
            auto& range = recorder.train.recordingRanges.back();
            range.outTimepoint = now;
            range.outTimecode = TimecodeOf(now);
            recorder.lastRangesPublished = now;
            PublishRanges(recorder);
        }
    }
    for (auto& [id, player] : players) {
        if (player.mode != Playing && player.mode != Dialing) {
            continue;
        }
        const std::int64_t position = Position(player, now);
        const bool forward = (player.speedNum > 0) == (player.speedDen > 0);
        if (forward && position >= player.outPoint && !player.chainedClipId.empty() &&
            ContinueIntoChain(player, now)) {
            PublishPlayer(player);
            continue;
        }
        if ((forward && position >= player.outPoint) || (!forward && position <= player.inPoint)) {
            // The player stops at the end of its material, as a deck does.
            Anchor(player, now);
            player.mode = Cued;
            player.speedNum = 0;
            PublishPlayer(player);
        }
    }
}

}  // namespace Korvo::Plexis::Tessel::Simulator

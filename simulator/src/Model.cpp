#include "Model.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace Korvo::Plexis::Tessel::Simulator {

using Data::OperationStatus;
using Data::Channels::LoadBoundary;
using Data::Clips::AsciiOrUtf16String;
using Data::Clips::Clip;
namespace Events = Notification;

namespace {

constexpr std::int64_t kFieldsPerDay = 24 * 3600 * kFieldsPerSecond;
constexpr std::int64_t kRecorderCapacity = 12 * 3600 * kFieldsPerSecond;

std::string FormatTimecode(std::int64_t fields) {
    const std::int64_t frames = fields / 2;
    char text[32];
    std::snprintf(text, sizeof text, "%02lld:%02lld:%02lld:%02lld",
                  static_cast<long long>(frames / (25 * 3600)),
                  static_cast<long long>(frames / (25 * 60) % 60),
                  static_cast<long long>(frames / 25 % 60), static_cast<long long>(frames % 25));
    return text;
}

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

Data::Clips::Essence SeededEssence(std::int32_t type, std::int32_t rate) {
    Data::Clips::Essence essence;
    essence.type = type;
    essence.recordingStatus = 2;
    essence.archiveStatus = 0;
    essence.metadata = 1;
    essence.blockSize = 4096;
    essence.videoCompressionType = type + 1;
    essence.audioCompressionType = 1;
    essence.videoCompressionInfo = 0;
    essence.audioConfiguration = 8;
    essence.videoCompressionRate = rate;
    essence.audioCompressionRate = 48000;
    essence.horizontalFrameSize = type == 2 ? 960 : 1920;
    essence.verticalFrameSize = type == 2 ? 540 : 1080;
    return essence;
}

}  // namespace

std::string TimecodeOf(std::int64_t fields) {
    return FormatTimecode(((fields % kFieldsPerDay) + kFieldsPerDay) % kFieldsPerDay);
}

std::string DurationTimecodeOf(std::int64_t fields) {
    return FormatTimecode(std::max<std::int64_t>(0, fields));
}

Model::Model(const SimulatorOptions& options, std::function<std::int64_t()> nowMs)
    : options(options), nowMs(std::move(nowMs)), random(options.seed) {
    Seed();
}

// ---------------------------------------------------------------------------------------------
// Seeding

std::string Model::NewId(std::size_t width) {
    // Never one in use: clips read from a state file came from this same generator in an
    // earlier run, and a clip made now must not take the identifier of one of them.
    static constexpr char kHex[] = "0123456789abcdef";
    std::string id(width, '0');
    do {
        for (auto& digit : id) {
            digit = kHex[random() % 16];
        }
    } while (IdInUse(id));
    return id;
}

bool Model::IdInUse(const std::string& id) const {
    if (clips.count(id) != 0 || playlists.count(id) != 0 || anglesGroups.count(id) != 0) {
        return true;
    }
    return std::any_of(recorders.begin(), recorders.end(),
                       [&](const auto& entry) { return entry.second.train.clip.umId == id; });
}

void Model::AddServerWithChannels(int serverId) {
    ServerEntry server;
    server.info.serverId = serverId;
    server.info.status = 1;
    server.info.name = ServerName(serverId);
    server.info.serverType = 1;
    server.info.hostName = "sim-host-" + std::to_string(serverId);
    server.info.version = "tessel-sim 1.0";
    const int channels = options.playersPerServer + options.recordersPerServer;
    server.info.channelCount = channels;
    for (int channel = 0; channel < channels; ++channel) {
        server.info.channelNumbers.push_back(channel);
    }
    server.info.isLocal = serverId == 1;
    servers[serverId] = server;

    for (int channel = 0; channel < options.playersPerServer; ++channel) {
        PlayerEntry player;
        player.id = ChannelId::PlayerOf(serverId, static_cast<unsigned>(channel));
        player.name = "Player " + std::to_string(channel + 1);
        player.overrides.playerGuid = player.id;
        players[player.id] = player;
    }
    for (int channel = options.playersPerServer; channel < channels; ++channel) {
        RecorderEntry recorder;
        recorder.id = ChannelId::RecorderOf(serverId, static_cast<unsigned>(channel));
        recorder.name = "Recorder " + std::to_string(channel - options.playersPerServer + 1);
        recorder.train.clip = NewTrainClip(recorder);
        recorder.train.recorderName = ServerName(serverId) + "/" + recorder.name;
        recorders[recorder.id] = recorder;
    }
}

Clip Model::NewTrainClip(const RecorderEntry& recorder) {
    Clip clip = SeededClip(static_cast<int>(recorder.id.GetChannel()), recorder.id.GetServer());
    clip.name = AsciiOrUtf16String::Ascii("Train " + ServerName(recorder.id.GetServer()) + " " +
                                          recorder.name);
    clip.varId = AsciiOrUtf16String::Ascii("TRAIN-" + recorder.id.ToString());
    clip.trainStatus = 1;
    return clip;
}

Clip Model::SeededClip(int index, int serverId) {
    static const char* const kKeywords[] = {"goal", "replay", "slow motion", "foul", "corner",
                                            "penalty", "interview", "crowd"};
    Clip clip;
    clip.umId = NewId(Clip::kUmIdWidth);
    clip.sourceUmId = NewId(Clip::kUmIdWidth);
    clip.fillAndKeyUmId = NewId(Clip::kUmIdWidth);
    clip.materialId = NewId(Clip::kMaterialIdWidth);
    char name[32];
    std::snprintf(name, sizeof name, "Clip %05d", index + 1);
    clip.name = AsciiOrUtf16String::Ascii(name);
    std::snprintf(name, sizeof name, "VAR-%05d", index + 1);
    clip.varId = AsciiOrUtf16String::Ascii(name);
    clip.keywords = {AsciiOrUtf16String::Ascii(kKeywords[random() % 8]),
                     AsciiOrUtf16String::Ascii(kKeywords[random() % 8])};
    clip.userBits = {static_cast<std::int16_t>(index % 16), static_cast<std::int16_t>(serverId)};
    clip.is3D = false;
    clip.isDual = index % 7 == 0;
    clip.isTwinRec = index % 11 == 0;
    clip.isLegacyTimecodeDrop = false;
    clip.trainStatus = 0;
    clip.sourceEngine = serverId;
    clip.uhdDivisionMode = 0;
    clip.hdrProfile = 0;
    clip.alphaArchiveStatus = 0;
    clip.archiveStatus = static_cast<std::int32_t>(random() % 3);
    clip.fillAndKeyStatus = 0;
    clip.userProtect = index % 5 == 0 ? 1 : 0;
    clip.camera = static_cast<std::int32_t>(random() % 6 + 1);
    clip.afdAspectRatio = 8;
    clip.codedFrameAspectRatio = 2;
    clip.videoFormat = 1;
    clip.videoStandard = 1;
    clip.userTimecodeType = 0;
    clip.primaryTimecode = 0;
    clip.rating = static_cast<std::int32_t>(random() % 6);
    clip.preferentialCamera = clip.camera;
    const std::int64_t today = Now() - Now() % kFieldsPerDay;
    const std::int64_t in =
        today + 9 * 3600 * kFieldsPerSecond + static_cast<std::int64_t>(random() % 36000) * 50;
    const std::int64_t duration = static_cast<std::int64_t>(random() % 116 + 5) * kFieldsPerSecond;
    clip.inBoundField = in;
    clip.shortInBoundField = in + kFieldsPerSecond;
    clip.shortOutBoundField = in + duration - kFieldsPerSecond;
    clip.outBoundField = in + duration;
    clip.legacyTimecodeOffset = 0;
    clip.kivIndex = index + 1;
    clip.userLock = 0;
    clip.thumbnailOffset = 25;
    clip.sequence = index;
    clip.machineSerial = 1000 + serverId;
    clip.nbAudioVideoChannels = 9;
    clip.dolbyMonoSignal = 0;
    clip.inBoundTodTimecode = TimecodeOf(in);
    clip.inBoundUserTimecode = TimecodeOf(in);
    clip.sourceInBoundTodTimecode = TimecodeOf(in);
    clip.sourceInBoundUserTimecode = TimecodeOf(in);
    clip.inBoundTimepoint = in;
    clip.intraEssence = SeededEssence(0, 100);
    clip.longGopEssence = SeededEssence(1, 50);
    clip.lowResEssence = SeededEssence(2, 5);
    return clip;
}

void Model::Seed() {
    for (int server = 1; server <= options.servers; ++server) {
        AddServerWithChannels(server);
    }
    std::vector<std::string> seeded;
    for (int index = 0; index < options.clips; ++index) {
        const int server = options.servers > 0 ? index % options.servers + 1 : 1;
        Clip clip = SeededClip(index, server);
        seeded.push_back(clip.umId);
        clips[seeded.back()] = {std::move(clip), server};
    }
    for (int index = 0; index < options.playlists && !seeded.empty(); ++index) {
        Data::Sequences::Playlist playlist;
        auto& sequence = playlist.sequence;
        sequence.id.location = index + 1;
        sequence.id.serverId = 1;
        sequence.umId = NewId(Clip::kUmIdWidth);
        sequence.name = AsciiOrUtf16String::Ascii("Playlist " + std::to_string(index + 1));
        sequence.varId = AsciiOrUtf16String::Ascii("PL-" + std::to_string(index + 1));
        sequence.playRateNumerator = 1;
        sequence.playRateDenominator = 1;
        std::vector<Data::Sequences::AudioVideoElement> elements;
        std::int64_t position = 0;
        for (int element = 0; element < 3; ++element) {
            const auto& clip = clips.at(seeded[(index * 3 + element) % seeded.size()]).clip;
            Data::Sequences::AudioVideoElement item;
            item.element.id = element + 1;
            item.element.sequenceId = sequence.id;
            item.element.position = element;
            item.element.umId = clip.umId;
            item.element.speed = {1, 1};
            item.videoFieldIn = clip.inBoundField;
            item.videoFieldOut = clip.outBoundField;
            item.audioFieldIn = clip.inBoundField;
            item.audioFieldOut = clip.outBoundField;
            position += clip.outBoundField - clip.inBoundField;
            elements.push_back(item);
        }
        playlist.audioVideoTrack.numberOfElements = static_cast<std::int32_t>(elements.size());
        playlist.audioVideoTrack.elements = std::move(elements);
        sequence.durationWithEffects = position;
        sequence.durationWithoutEffects = position;
        const std::string id = sequence.umId;
        playlists[id] = std::move(playlist);
    }
    for (int index = 0; index < options.anglesGroups && seeded.size() >= 2; ++index) {
        Data::Clips::Groups::AnglesGroup group;
        group.groupGuid = Data::Clips::Groups::Guid(NewId(32));
        for (int angle = 0; angle < 2; ++angle) {
            const auto& clip = clips.at(seeded[(index * 2 + angle) % seeded.size()]).clip;
            group.angles[angle] = {Data::Guid(clip.umId), clip.camera};
        }
        const std::string id = group.groupGuid.GetValue();
        anglesGroups[id] = std::move(group);
    }
}

// ---------------------------------------------------------------------------------------------
// Channels

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
    emitter->ChannelResults(commandGuid, results);
    for (const auto* player : changed) {
        PublishPlayer(*player);
    }
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
    emitter->ChannelResults(commandGuid, results);
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

template <class Args>
Args Model::CommandEvent(const Data::Guid& commandGuid, int serverId, int sequenceNumber) const {
    Args args;
    args.commandGuid = commandGuid;
    args.serverId = serverId;
    args.originType = commandGuid.IsEmpty() ? 2 : 1;
    args.sequenceNumber = sequenceNumber;
    args.result = 0;
    args.timestamp = nowMs();
    args.userName = "tessel-sim";
    return args;
}

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
        auto args = CommandEvent<Args>(commandGuid, server, 0);
        args.clipCount = count;
        args.revision = revision;
        emitter->Notify(ServerName(server), args);
    }
    return true;
}

// ---------------------------------------------------------------------------------------------
// Channel commands

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
    auto started = CommandEvent<Events::ClipCreationEventArgs>(commandGuid, server, 0);
    started.channelNumber = static_cast<std::int32_t>(recorder.id.GetChannel());
    started.clip = clip;
    started.sourceClip = recorder.train.clip;
    started.inTimecode = TimecodeOf(clip.inBoundField);
    started.outTimecode = TimecodeOf(clip.outBoundField);
    clips[clip.umId] = {clip, server};
    Changed();
    started.revision = revision;
    emitter->Notify(ServerName(server), started);
    Events::ClipCreationFinishedEventArgs finished;
    static_cast<Events::ClipCreationEventArgs&>(finished) = started;
    finished.sequenceNumber = 1;
    emitter->Notify(ServerName(server), finished);
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
    emitter->Reply(reply);
}

void Model::Handle(const Commands::GetMultiviewerDataCommandParams& params) {
    Commands::GetMultiviewerDataCommandReply reply(params.commandGuid);
    for (const auto& [id, player] : players) {
        reply.playerDataOverrides[id] = player.overrides;
    }
    reply.status = Outcome::kOk;
    emitter->Reply(reply);
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
    emitter->ChannelResults(params.commandGuid, results);
}

// ---------------------------------------------------------------------------------------------
// Data commands

void Model::Handle(const Commands::GetClipsCommandParams& params) {
    Commands::GetClipsCommandReply reply(params.commandGuid);
    reply.marker = revision;
    reply.clips.reserve(clips.size());
    for (const auto& [id, entry] : clips) {
        reply.clips.push_back(entry.clip);
    }
    emitter->Reply(std::move(reply));
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
    emitter->Reply(reply);
}

void Model::Handle(const Commands::GetServersCommandParams& params) {
    // Range 0 lists every server; any other value only those on the network.
    Commands::GetServersCommandReply reply(params.commandGuid);
    for (const auto& [id, server] : servers) {
        if (params.serverRange == 0 || server.online) {
            reply.servers.push_back(server.info);
        }
    }
    emitter->Reply(reply);
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
    emitter->Reply(reply);
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
    emitter->Reply(std::move(reply));
    if (PublishedAsMass<Events::MassClipDeletionEventArgs>(
            params.commandGuid, deleted, [](const ClipEntry& entry) { return entry.serverId; })) {
        return;
    }
    int sequence = 0;
    for (const auto& entry : deleted) {
        auto args = CommandEvent<Events::ClipDeletionFinishedEventArgs>(params.commandGuid,
                                                                        entry.serverId, sequence++);
        args.clip = entry.clip;
        args.revision = revision;
        emitter->Notify(ServerName(entry.serverId), args);
    }
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
            auto started =
                CommandEvent<Events::ClipCreationEventArgs>(params.commandGuid, server, sequence++);
            started.clip = clip;
            if (source != nullptr) {
                started.sourceClip = *source;
            }
            started.inTimecode = TimecodeOf(clip.inBoundField);
            started.outTimecode = TimecodeOf(clip.outBoundField);
            clips[clip.umId] = {clip, server};
            Changed();
            started.revision = revision;
            emitter->Notify(ServerName(server), started);
            Events::ClipCreationFinishedEventArgs finished;
            static_cast<Events::ClipCreationEventArgs&>(finished) = started;
            finished.sequenceNumber = sequence++;
            emitter->Notify(ServerName(server), finished);
        }
        reply.results.push_back(std::move(result));
    }
    return reply;
}

void Model::Handle(const Commands::CreateClipsCommandParams& params) {
    emitter->Reply(CreateClips(params));
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
    emitter->Reply(std::move(reply));
    if (PublishedAsMass<Events::MassClipUpdateEventArgs>(
            params.commandGuid, changes, [](const Change& change) { return change.server; })) {
        return;
    }
    int sequence = 0;
    for (const auto& change : changes) {
        const std::string server = ServerName(change.server);
        if (change.before.kivIndex != change.after.kivIndex) {
            // A new storage slot: the clip moves.
            auto moving = CommandEvent<Events::ClipMoveEventArgs>(params.commandGuid, change.server,
                                                                  sequence++);
            moving.oldClip = change.before;
            moving.newClip = change.after;
            moving.revision = revision;
            emitter->Notify(server, moving);
            Events::ClipMoveFinishedEventArgs moved;
            static_cast<Events::ClipMoveEventArgs&>(moved) = moving;
            moved.sequenceNumber = sequence++;
            emitter->Notify(server, moved);
        } else {
            auto updated = CommandEvent<Events::ClipUpdateFinishedEventArgs>(
                params.commandGuid, change.server, sequence++);
            updated.oldClip = change.before;
            updated.newClip = change.after;
            updated.succeeded = true;
            updated.revision = revision;
            emitter->Notify(server, updated);
        }
    }
}

void Model::Handle(const Commands::PingCommandParams& params) {
    emitter->Reply(Commands::SuccessReply(params.commandGuid));
}

void Model::Handle(const Commands::GetAnglesGroupsCommandParams& params) {
    Commands::GetAnglesGroupsCommandReply reply(params.commandGuid);
    reply.marker = revision;
    for (const auto& [id, group] : anglesGroups) {
        reply.anglesGroups.push_back(group);
    }
    emitter->Reply(std::move(reply));
}

void Model::Handle(const Commands::DeleteAnglesGroupCommandParams& params) {
    Commands::AnglesGroupCommandReply reply(params.commandGuid);
    reply.groupGuid = Data::Clips::Groups::Guid(params.groupGuid);
    reply.clipCommandReply.commandGuid = params.commandGuid;
    const auto found = anglesGroups.find(params.groupGuid.GetValue());
    if (found == anglesGroups.end()) {
        reply.status = Outcome::kUnknownMaterial;
        emitter->Reply(reply);
        return;
    }
    anglesGroups.erase(found);
    Changed();
    reply.status = Outcome::kOk;
    emitter->Reply(reply);
    auto args = CommandEvent<Events::AnglesGroupDeletionFinishedEventArgs>(params.commandGuid, 1, 0);
    args.groupGuid = reply.groupGuid;
    args.revision = revision;
    emitter->Notify(ServerName(1), args);
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
        emitter->Reply(reply);
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
    emitter->Reply(reply);
    auto args = CommandEvent<Events::AnglesGroupUpdateFinishedEventArgs>(params.commandGuid, 1, 0);
    args.anglesGroup = group;
    args.revision = revision;
    emitter->Notify(ServerName(1), args);
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
        emitter->Reply(reply);
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
    emitter->Reply(reply);
    auto args = CommandEvent<Events::AnglesGroupCreationFinishedEventArgs>(params.commandGuid, 1, 0);
    args.anglesGroup = group;
    args.revision = revision;
    emitter->Notify(ServerName(1), args);
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
    emitter->Reply(std::move(reply));
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
    emitter->Reply(std::move(reply));
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
    emitter->Reply(std::move(reply));
}

// ---------------------------------------------------------------------------------------------
// Time and servers

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

int Model::AddServer() {
    const int serverId = servers.empty() ? 1 : servers.rbegin()->first + 1;
    AddServerWithChannels(serverId);
    Events::ServerAddedEventArgs args;
    args.serverId = serverId;
    args.server = servers.at(serverId).info;
    emitter->Notify(ServerName(serverId), args);
    return serverId;
}

bool Model::RemoveServer(int serverId) {
    if (servers.erase(serverId) == 0) {
        return false;
    }
    for (auto entry = players.begin(); entry != players.end();) {
        entry = entry->first.GetServer() == serverId ? players.erase(entry) : std::next(entry);
    }
    for (auto entry = recorders.begin(); entry != recorders.end();) {
        entry = entry->first.GetServer() == serverId ? recorders.erase(entry) : std::next(entry);
    }
    Events::ServerRemovedEventArgs args;
    args.serverId = serverId;
    emitter->Notify(ServerName(serverId), args);
    return true;
}

bool Model::SetOnline(int serverId, bool online) {
    const auto found = servers.find(serverId);
    if (found == servers.end()) {
        return false;
    }
    found->second.online = online;
    found->second.info.status = online ? 1 : 0;
    if (online) {
        Events::ServerAddedEventArgs args;
        args.serverId = serverId;
        args.server = found->second.info;
        emitter->Notify(ServerName(serverId), args);
    } else {
        Events::DisconnectedFromNetworkEventArgs args;
        args.serverId = serverId;
        emitter->Notify(ServerName(serverId), args);
    }
    return true;
}

void Model::AnnounceServers() {
    for (const auto& [id, server] : servers) {
        Events::ServerAddedEventArgs args;
        args.serverId = id;
        args.server = server.info;
        emitter->Notify(ServerName(id), args);
    }
}

bool Model::TakeDirty() {
    const bool was = dirty;
    dirty = false;
    return was;
}

}  // namespace Korvo::Plexis::Tessel::Simulator

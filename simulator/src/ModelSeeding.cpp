// The servers, channels, clips, playlists and angles groups a model starts with.
#include "Model.h"

#include <algorithm>
#include <cstdio>

namespace Korvo::Plexis::Tessel::Simulator {

using Data::Clips::AsciiOrUtf16String;
using Data::Clips::Clip;

namespace {

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
}  // namespace Korvo::Plexis::Tessel::Simulator

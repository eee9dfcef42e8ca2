#include "support/Samples.h"

#include <string>

namespace Korvo::Testing::Samples {

namespace {

std::string Text(const char* what, int seed) {
    return std::string(what) + "-" + std::to_string(seed);
}

Data::Clips::Essence Essence(int seed) {
    Data::Clips::Essence essence;
    essence.type = seed + 1;
    essence.recordingStatus = seed + 2;
    essence.archiveStatus = seed + 3;
    essence.metadata = seed + 4;
    essence.blockSize = seed + 5;
    essence.videoCompressionType = seed + 6;
    essence.audioCompressionType = seed + 7;
    essence.videoCompressionInfo = seed + 8;
    essence.audioConfiguration = seed + 9;
    essence.videoCompressionRate = seed + 10;
    essence.audioCompressionRate = seed + 11;
    essence.horizontalFrameSize = 1920 + seed;
    essence.verticalFrameSize = 1080 + seed;
    return essence;
}

}  // namespace

Data::Clips::Clip Clip(int seed) {
    Data::Clips::Clip clip;
    clip.umId = Text("umid", seed);
    clip.sourceUmId = Text("source", seed);
    clip.fillAndKeyUmId = Text("key", seed);
    clip.materialId = Text("material", seed);
    clip.name = {Text("Goal", seed), false};
    clip.varId = {std::string("\0V\0a\0r", 6), true};
    clip.keywords = {Data::Clips::AsciiOrUtf16String::Ascii("replay"), {Text("k", seed), false}};
    clip.userBits = {static_cast<std::int16_t>(-seed), 7, 300};
    clip.is3D = clip.isDual = clip.isTwinRec = clip.isLegacyTimecodeDrop = true;
    clip.trainStatus = seed + 1;
    clip.sourceEngine = seed + 2;
    clip.uhdDivisionMode = seed + 3;
    clip.hdrProfile = seed + 4;
    clip.alphaArchiveStatus = seed + 5;
    clip.archiveStatus = seed + 6;
    clip.fillAndKeyStatus = seed + 7;
    clip.userProtect = seed + 8;
    clip.camera = seed + 9;
    clip.afdAspectRatio = seed + 10;
    clip.codedFrameAspectRatio = seed + 11;
    clip.videoFormat = seed + 12;
    clip.videoStandard = seed + 13;
    clip.userTimecodeType = seed + 14;
    clip.primaryTimecode = seed + 15;
    clip.rating = seed + 16;
    clip.preferentialCamera = seed + 17;
    clip.inBoundField = 1000 * seed + 1;
    clip.shortInBoundField = 1000 * seed + 2;
    clip.shortOutBoundField = 1000 * seed + 3;
    clip.outBoundField = 1000 * seed + 4;
    clip.legacyTimecodeOffset = -5 * seed;
    clip.kivIndex = seed + 18;
    clip.userLock = 1000 * seed + 6;
    clip.thumbnailOffset = 1000 * seed + 7;
    clip.sequence = 1000 * seed + 8;
    clip.machineSerial = 1'000'000'000'000LL + seed;
    clip.nbAudioVideoChannels = seed + 19;
    clip.dolbyMonoSignal = seed + 20;
    clip.inBoundTodTimecode = "10:00:00:0" + std::to_string(seed % 10);
    clip.inBoundUserTimecode = "01:00:00:00";
    clip.sourceInBoundTodTimecode = "09:59:59:24";
    clip.sourceInBoundUserTimecode = "00:59:59:24";
    clip.inBoundTimepoint = 123456789LL * seed;
    clip.intraEssence = Essence(seed);
    clip.longGopEssence = Essence(seed + 100);
    clip.lowResEssence = Essence(seed + 200);
    return clip;
}

Data::Sequences::Playlist Playlist(int seed) {
    Data::Sequences::Tag tag;
    tag.id = seed;
    tag.commandType = seed + 1;
    tag.field = 50 * seed;
    tag.properties[3] = {seed + 2, {1, 2, seed}};
    Data::Sequences::AudioVideoElement element;
    element.videoEffectType = seed + 1;
    element.audioEffectType = seed + 2;
    element.videoEffectDuration = seed + 3;
    element.audioEffectDuration = seed + 4;
    element.videoFieldIn = seed + 5;
    element.videoFieldOut = seed + 6;
    element.audioFieldIn = seed + 7;
    element.audioFieldOut = seed + 8;
    auto& inner = element.element;
    inner.id = seed + 9;
    inner.sequenceId = {seed + 10, seed + 11};
    inner.position = seed + 12;
    inner.umId = Text("element", seed);
    inner.inBoundaryType = seed + 13;
    inner.outBoundaryType = seed + 14;
    inner.effectPosition = seed + 15;
    inner.stillMode = seed + 16;
    inner.transitionTimer = seed + 17;
    inner.tags = {tag};
    inner.speed = {1, 2};
    inner.internalLoopId = seed + 18;
    inner.internalLoopRunNb = seed + 19;

    Data::Sequences::Playlist playlist;
    playlist.audioVideoTrack.elements = std::vector<Data::Sequences::AudioVideoElement>{element};
    playlist.audioVideoTrack.numberOfElements = 1;
    playlist.auxTrackClipUmId = Text("aux", seed);
    auto& sequence = playlist.sequence;
    sequence.id = {seed, seed + 1};
    sequence.umId = Text("sequence", seed);
    sequence.varId = Data::Clips::AsciiOrUtf16String::Ascii(Text("var", seed));
    sequence.name = Data::Clips::AsciiOrUtf16String::Ascii(Text("Highlights", seed));
    sequence.isTimeCodeRegen = true;
    sequence.timeCodeRegenReference = "10:00:00:00";
    sequence.timeCodeRegenBase = seed + 1;
    sequence.timeCodeRegenSource = seed + 2;
    sequence.timeCodeRegenOutput = seed + 3;
    sequence.timeCodeRegenType = seed + 4;
    sequence.durationWithEffects = 500 + seed;
    sequence.durationWithoutEffects = 400 + seed;
    sequence.playRateNumerator = 1LL << 40;
    sequence.playRateDenominator = 3;
    sequence.isFixedDuration = true;
    sequence.archiveStatus = seed + 5;
    return playlist;
}

Data::Channels::LoadBoundary Boundary(int seed) {
    return seed % 2 ? Data::Channels::LoadBoundary::Absolute(1, 1000 + seed)
                    : Data::Channels::LoadBoundary::Relative(2, -seed);
}

Data::OperationStatus Status(int seed) {
    return {seed, seed + 1};
}

Data::Channels::PlayerState PlayerState(int seed) {
    Data::Channels::PlayerState state;
    state.timestamp = 1'700'000'000'000LL + seed;
    state.channelNumber = seed;
    state.channelName = Text("PGM", seed);
    state.serverId = seed + 1;
    state.playMode = seed + 2;
    auto& info = state.infoOnAir;
    info.speedNumerator = 1;
    info.speedDenominator = 2;
    info.playMode = seed + 3;
    info.loopMode = seed + 4;
    info.elementIndex = seed + 5;
    info.elementCount = seed + 6;
    info.loopCount = seed + 7;
    info.videoStandard = seed + 8;
    info.controlMode = seed + 9;
    info.timepoint = 10 + seed;
    info.position = 11 + seed;
    info.inPoint = 12 + seed;
    info.outPoint = 13 + seed;
    info.duration = 14 + seed;
    info.remaining = 15 + seed;
    info.sequencePosition = 16 + seed;
    info.sequenceDuration = 17 + seed;
    info.updateTimestamp = 18 + seed;
    state.currentClip = {Clip(seed), 19 + seed, "10:00:00:00", "01:00:00:00"};
    state.nextClip = {Clip(seed + 1), 20 + seed, "10:00:01:00", "01:00:01:00"};
    state.cueTimepoint = 21 + seed;
    state.currentTimepoint = 22 + seed;
    state.liveTimepoint = 23 + seed;
    state.chainTimepoint = 24 + seed;
    state.loadedClipUmId = Text("loaded", seed);
    state.loadedSequenceUmId = Text("sequence", seed);
    state.liveRecorderName = Text("REC", seed);
    state.currentTimecode = "10:00:00:01";
    state.inTimecode = "10:00:00:00";
    state.outTimecode = "10:00:10:00";
    state.remainingTimecode = "00:00:09:24";
    state.durationTimecode = "00:00:10:00";
    state.loadedMaterialType = seed + 10;
    state.inBoundary = Boundary(seed);
    state.outBoundary = Boundary(seed + 1);
    return state;
}

Data::Channels::RecorderState RecorderState(int seed) {
    Data::Channels::RecorderState state;
    state.timestamp = 1'700'000'000'000LL + seed;
    state.channelNumber = seed;
    state.channelName = Text("CAM", seed);
    state.serverId = seed + 1;
    state.isRecording = true;
    state.recordStartTimepoint = 100 + seed;
    state.currentTimepoint = 200 + seed;
    state.currentTimecode = "10:00:04:00";
    state.recordStartTimecode = "10:00:00:00";
    state.recordMode = seed + 2;
    state.recordedFields = 300 + seed;
    state.remainingFields = 400 + seed;
    state.clip = Clip(seed);
    return state;
}

Data::Servers::ServerInfo Server(int seed) {
    Data::Servers::ServerInfo server;
    server.serverId = seed;
    server.status = seed + 1;
    server.name = Text("Server", seed);
    server.serverType = seed + 2;
    server.hostName = Text("host", seed);
    server.version = "2.1." + std::to_string(seed);
    server.channelCount = 3;
    server.channelNumbers = {0, 1, 2};
    server.isLocal = true;
    return server;
}

Data::Clips::Train Train(int seed) {
    Data::Clips::Train train;
    train.clip = Clip(seed);
    train.recordingRanges = {{10 + seed, 20 + seed, "10:00:00:00", "10:00:00:10"},
                             {30 + seed, 40 + seed, "10:00:01:00", "10:00:01:10"}};
    train.isRecording = true;
    train.isLoopRecording = true;
    train.recorderName = Text("REC", seed);
    return train;
}

Data::Clips::Groups::AnglesGroup AnglesGroup(int seed) {
    Data::Clips::Groups::AnglesGroup group;
    group.groupGuid = Data::Clips::Groups::Guid(Text("group", seed));
    group.angles[0] = {Data::Guid(Text("clip-a", seed)), 1};
    group.angles[1] = {Data::Guid(Text("clip-b", seed)), 2};
    return group;
}

Plexis::Multiviewer::PlayerDataOverrides Overrides(const Data::Channels::Guid& player, int seed) {
    Plexis::Multiviewer::PlayerDataOverrides overrides;
    overrides.playerGuid = player;
    overrides.clipCreationIn = 10 + seed;
    overrides.clipCreationOut = 20 + seed;
    overrides.isFirstControlledMediaOutput = true;
    overrides.controlMode = seed + 1;
    overrides.programMode = seed + 2;
    overrides.isPostRollEnabled = false;
    overrides.message = Text("ISO", seed);
    return overrides;
}

}  // namespace Korvo::Testing::Samples

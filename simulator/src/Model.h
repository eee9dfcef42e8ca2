#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <Korvo/Plexis/Tessel/Simulator/Simulator.h>

#include "Wire.h"

namespace Korvo::Plexis::Tessel::Simulator {

/// The outcome codes the simulator reports in an `OperationStatus` (code, reason).
namespace Outcome {
inline Data::OperationStatus Of(std::int32_t code, std::int32_t reason) {
    Data::OperationStatus status;
    status.code = code;
    status.reason = reason;
    return status;
}
inline const Data::OperationStatus kOk = Of(0, 0);
inline const Data::OperationStatus kUnknownChannel = Of(1, 1);
inline const Data::OperationStatus kWrongChannelKind = Of(1, 2);
inline const Data::OperationStatus kNotLoaded = Of(1, 3);
inline const Data::OperationStatus kUnknownMaterial = Of(1, 4);
inline const Data::OperationStatus kAlreadyRecording = Of(1, 5);
inline const Data::OperationStatus kNotRecording = Of(1, 6);
inline const Data::OperationStatus kInvalidArgument = Of(1, 7);
inline const Data::OperationStatus kServerOffline = Of(1, 8);
inline const Data::OperationStatus kAlreadyExists = Of(1, 9);
inline const Data::OperationStatus kInUse = Of(1, 10);
}  // namespace Outcome

/// What a player is doing (`PlayerState::playMode`).
enum PlayMode : std::int32_t { Idle = 0, Cued = 1, Playing = 2, Live = 3, Dialing = 4 };
/// What a player has loaded (`PlayerState::loadedMaterialType`).
enum Material : std::int32_t { Nothing = 0, ClipMaterial = 1, SequenceMaterial = 2, LiveFeed = 3 };

inline constexpr std::int64_t kFieldsPerSecond = 50;
inline constexpr std::int64_t kFieldsPerDay = 24 * 3600 * kFieldsPerSecond;

/// "HH:MM:SS:FF" of a time point counted in fields (25 frames a second), as a time of day.
std::string TimecodeOf(std::int64_t fields);
/// "HH:MM:SS:FF" of a duration in fields.
std::string DurationTimecodeOf(std::int64_t fields);

struct ServerEntry {
    Data::Servers::ServerInfo info;
    bool online = true;
};

struct PlayerEntry {
    Data::Channels::Guid id;
    std::string name;
    PlayMode mode = Idle;
    Material material = Nothing;
    std::string clipId;       // loaded clip (its umId)
    std::string sequenceId;   // loaded playlist
    std::string liveFeed;     // recorder followed, as its channel text
    std::int64_t materialIn = 0, materialOut = 0;  // bounds of the material itself
    std::int64_t inPoint = 0, outPoint = 0;        // bounds after the load boundaries
    std::int64_t anchorPosition = 0;  // position at anchorTime
    std::int64_t anchorTime = 0;      // clock, in fields
    std::int32_t speedNum = 0, speedDen = 1;
    std::int64_t cueTimepoint = 0, liveTimepoint = 0, chainTimepoint = 0;
    std::string chainedClipId;
    Data::Channels::LoadBoundary chainIn, chainOut;  // the chained clip's load boundaries
    Data::Channels::LoadBoundary inBoundary, outBoundary;
    bool blackScreen = false;
    Multiviewer::PlayerDataOverrides overrides;
};

struct RecorderEntry {
    Data::Channels::Guid id;
    std::string name;
    bool recording = false;
    std::int64_t startTimepoint = 0;
    std::int64_t lastRangesPublished = 0;
    Data::Clips::Train train;
};

struct ClipEntry {
    Data::Clips::Clip clip;
    int serverId = 1;
};

/// The simulated servers and everything they hold. Answers one command at a time into an
/// `Emitter`; only the simulator's thread touches it.
class Model {
public:
    /// `nowMs` is the clock: milliseconds since the epoch.
    Model(const SimulatorOptions& options, std::function<std::int64_t()> nowMs);

    /// Replaces the clips, playlists and angles groups with those of `state` (as made by
    /// `SaveState`). Throws `std::runtime_error` when it is not a state.
    void LoadState(const std::string& state);
    std::string SaveState() const;
    /// True once since the last call when clips, playlists or groups changed.
    bool TakeDirty();

    /// Every `Handle` answers into the emitter given here.
    void Use(Emitter& target) { emitter = &target; }

#define KORVO_SIM_HANDLER(Params, ...) void Handle(const Commands::Params& params);
    KORVO_TESSEL_COMMANDS(KORVO_SIM_HANDLER)
#undef KORVO_SIM_HANDLER

    /// Lets time pass: recorders publish their growing ranges, players stop at their bounds.
    void Tick();

    /// What an operator at the server's panel does to a channel or a clip, through the same
    /// handlers as the commands; the caller decides whether what they emit is published.
    bool OperatorToggleChannel(const Data::Channels::Guid& channel);
    bool OperatorRenameClip(const std::string& umId, const std::string& name);

    int AddServer();
    bool RemoveServer(int serverId);
    bool SetOnline(int serverId, bool online);
    /// "ServerAdded" for every server (after a restart).
    void AnnounceServers();

    std::size_t ClipCount() const { return clips.size(); }

private:
    using ChannelId = Data::Channels::Guid;
    using Results = std::vector<Commands::ChannelResult>;

    std::int64_t Now() const { return nowMs() / (1000 / kFieldsPerSecond); }
    // A random identifier of `width` hex digits that no clip, playlist, group or train has.
    std::string NewId(std::size_t width);
    bool IdInUse(const std::string& id) const;
    std::string ServerName(int serverId) const { return "replay-" + std::to_string(serverId); }

    void Seed();
    void AddServerWithChannels(int serverId);
    Data::Clips::Clip SeededClip(int index, int serverId);
    Data::Clips::Clip NewTrainClip(const RecorderEntry& recorder);

    // Channel lookup: null, with `status` saying why, when the channel cannot take the command.
    PlayerEntry* FindPlayer(const ChannelId& id, Data::OperationStatus& status);
    RecorderEntry* FindRecorder(const ChannelId& id, Data::OperationStatus& status);
    bool ServerOnline(int serverId) const;

    // Runs `change` on each player named in `ids` (a set of channels, or a map keyed by them),
    // answers one result per channel and publishes the new state of every player changed.
    template <class Ids, class Change>
    void ForEachPlayer(const Data::Guid& commandGuid, const Ids& ids, Change change);
    template <class Ids, class Change>
    void ForEachRecorder(const Data::Guid& commandGuid, const Ids& ids, Change change);

    std::int64_t Position(const PlayerEntry& player, std::int64_t now) const;
    void Anchor(PlayerEntry& player, std::int64_t now);
    Data::OperationStatus LoadMaterial(PlayerEntry& player, const std::string& materialId,
                                       std::int64_t cue, const Data::Channels::LoadBoundary& in,
                                       const Data::Channels::LoadBoundary& out);
    Data::OperationStatus ApplyBoundaries(PlayerEntry& player,
                                          const Data::Channels::LoadBoundary& in,
                                          const Data::Channels::LoadBoundary& out);
    // Sets a loaded player moving at speedNum/speedDen in mode `moving` (cued at speed 0).
    Data::OperationStatus Move(PlayerEntry& player, std::int32_t speedNum, std::int32_t speedDen,
                               PlayMode moving);
    // Loads the chained clip on a player that has played to its out point, carrying on at the
    // same speed; false (nothing changed) when the clip can no longer be loaded.
    bool ContinueIntoChain(PlayerEntry& player, std::int64_t now);
    // New boundaries for what is loaded, keeping the position inside them; unchanged on failure.
    Data::OperationStatus Rebound(PlayerEntry& player, const Data::Channels::LoadBoundary& in,
                                  const Data::Channels::LoadBoundary& out);
    static bool Loaded(const PlayerEntry& player) {
        return player.material == ClipMaterial || player.material == SequenceMaterial;
    }

    Data::Channels::PlayerState PlayerStateOf(const PlayerEntry& player) const;
    Data::Channels::RecorderState RecorderStateOf(const RecorderEntry& recorder) const;
    Data::Channels::PlayerClipOnAir OnAir(const std::string& clipId, std::int64_t position) const;

    // The per-channel results of a channel command, which go out as `ChannelCommandReply`s.
    struct ChannelAnswer {
        const Data::Guid& commandGuid;
        const Results& results;
    };

    // How every command ends: its reply goes out first, then `publish` notifies of what the
    // command changed, so that a client has its command's outcome before the effects it caused.
    template <class Reply, class Publish>
    void Answer(Reply&& reply, Publish publish) {
        if constexpr (std::is_same_v<std::decay_t<Reply>, ChannelAnswer>) {
            emitter->ChannelResults(reply.commandGuid, reply.results);
        } else {
            emitter->Reply(std::forward<Reply>(reply));
        }
        publish();
    }
    template <class Reply>
    void Answer(Reply&& reply) {
        Answer(std::forward<Reply>(reply), [] {});
    }

    void PublishPlayer(const PlayerEntry& player);
    void PublishRecorder(const RecorderEntry& recorder, const Data::Guid& commandGuid);
    void PublishRanges(const RecorderEntry& recorder);

    // A command event of `commandGuid` on server `serverId`, as this simulator's user made it.
    template <class Args>
    Args CommandEvent(const Data::Guid& commandGuid, int serverId, int sequenceNumber) const {
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
    // Publishes a command event at the current revision once `fill` has set its own fields;
    // returns what it published.
    template <class Args, class Fill>
    Args PublishCommandEvent(const Data::Guid& commandGuid, int serverId, int sequenceNumber,
                             Fill fill) {
        auto args = CommandEvent<Args>(commandGuid, serverId, sequenceNumber);
        fill(args);
        args.revision = revision;
        emitter->Notify(ServerName(serverId), args);
        return args;
    }
    // Publishes the "...Finished" twin of an event already published, as number `sequenceNumber`.
    template <class Finished, class Started>
    void PublishFinished(const Started& started, int sequenceNumber) {
        Finished finished;
        static_cast<Started&>(finished) = started;
        finished.sequenceNumber = sequenceNumber;
        emitter->Notify(ServerName(started.serverId), finished);
    }

    // Above the mass threshold, one mass notification per server instead of one per clip: true
    // when it published them.
    template <class Args, class Items, class ServerOf>
    bool PublishedAsMass(const Data::Guid& commandGuid, const Items& items, ServerOf serverOf);

    // Creates the clips of a command, publishing their creation; the reply's results.
    Commands::ClipCommandReply CreateClips(const Commands::CreateClipsCommandParams& params);
    void FinishRecording(RecorderEntry& recorder, const Data::Guid& commandGuid);
    void Changed() {
        ++revision;
        dirty = true;
    }

    SimulatorOptions options;
    std::function<std::int64_t()> nowMs;
    std::mt19937_64 random;
    Emitter* emitter = nullptr;

    std::map<int, ServerEntry> servers;
    std::map<ChannelId, PlayerEntry> players;
    std::map<ChannelId, RecorderEntry> recorders;
    std::map<std::string, ClipEntry> clips;  // by umId
    std::map<std::string, Data::Sequences::Playlist> playlists;  // by the sequence's umId
    std::map<std::string, Data::Clips::Groups::AnglesGroup> anglesGroups;  // by group identifier
    std::int64_t revision = 1;
    bool dirty = false;
};

}  // namespace Korvo::Plexis::Tessel::Simulator

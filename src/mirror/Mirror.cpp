#include <Korvo/Plexis/Tessel/Client/Mirror.h>

#include <set>

#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CreateClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/DeleteClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GoIdleCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LiveCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PlayCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StartCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StepCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StopCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdateClipsCommandParams.h>

#include "mirror/MirrorEngine.h"

namespace Korvo::Plexis::Tessel::Client {

const char* ToString(SyncState state) noexcept {
    switch (state) {
        case SyncState::Syncing:
            return "Syncing";
        case SyncState::Live:
            return "Live";
        case SyncState::Stale:
            return "Stale";
        case SyncState::Lost:
            return "Lost";
    }
    return "Unknown";
}

// ---------------------------------------------------------------------------------------------
// Snapshots

SourceSnapshot::SourceSnapshot(std::shared_ptr<const Detail::SourceData> data)
    : data(std::move(data)) {}

const std::string& SourceSnapshot::Name() const { return data->name; }
SyncState SourceSnapshot::CatalogueState() const { return data->catalogueState; }
std::chrono::system_clock::time_point SourceSnapshot::CatalogueConfirmedAt() const {
    return data->catalogueConfirmedAt;
}
const std::map<int, MirroredServer>& SourceSnapshot::Servers() const { return *data->servers; }
const std::map<Data::Channels::Guid, SourceSnapshot::Shared<Data::Channels::PlayerState>>&
SourceSnapshot::Players() const {
    return *data->players;
}
const std::map<Data::Channels::Guid, SourceSnapshot::Shared<MirroredRecorder>>&
SourceSnapshot::Recorders() const {
    return *data->recorders;
}
SourceSnapshot::Shared<Data::Clips::Clip> SourceSnapshot::FindClip(const std::string& umId) const {
    return data->clips->Find(umId);
}
std::size_t SourceSnapshot::ClipCount() const { return data->clips->count; }
void SourceSnapshot::ForEachClip(
    const std::function<void(const Shared<Data::Clips::Clip>&)>& visit) const {
    for (const auto& chunk : data->clips->chunks) {
        for (const auto& clip : chunk->clips) {
            visit(clip);
        }
    }
}
const std::map<std::string, SourceSnapshot::Shared<Data::Sequences::Playlist>>&
SourceSnapshot::Playlists() const {
    return *data->playlists;
}
const std::map<std::string, SourceSnapshot::Shared<Data::Clips::Groups::AnglesGroup>>&
SourceSnapshot::AnglesGroups() const {
    return *data->anglesGroups;
}
const std::map<std::string, SourceSnapshot::Shared<Data::Clips::Train>>& SourceSnapshot::Trains()
    const {
    return *data->trains;
}

// ---------------------------------------------------------------------------------------------
// Mirror

Mirror::Mirror(MirrorOptions options)
    : engine(std::make_shared<Detail::MirrorEngine>(std::move(options))) {}

Mirror::~Mirror() { engine->Stop(); }

MirrorSnapshot Mirror::Snapshot() const { return engine->Snapshot(); }

int Mirror::Watch(std::function<void(const MirrorEvent&)> watcher) {
    return engine->Watch(std::move(watcher), false);
}

int Mirror::WatchStates(std::function<void(const SyncStateChanged&)> watcher) {
    return engine->Watch(
        [watcher = std::move(watcher)](const MirrorEvent& event) {
            watcher(std::get<SyncStateChanged>(event));
        },
        true);
}

void Mirror::Unwatch(int watcher) { engine->Unwatch(watcher); }

MirrorStatistics Mirror::Statistics() const { return engine->Statistics(); }

Connection& Mirror::ConnectionOf(std::size_t source) { return engine->ConnectionOf(source); }

void Mirror::Resync(std::size_t source) { engine->Resync(source); }

// ---------------------------------------------------------------------------------------------
// Settling a command whose outcome is unknown

namespace {

namespace Commands = HighLevelOperations::Commands;
using Data::Channels::PlayerState;
using Verdict = Settlement::Verdict;

// Play modes as the server numbers them.
constexpr std::int32_t kIdle = 0;
constexpr std::int32_t kPlaying = 2;
constexpr std::int32_t kLive = 3;

class Judge {
public:
    Judge(const SourceSnapshot& source, Settlement& settlement)
        : source(source), settlement(settlement) {}

    // Records what the mirror shows of a player and whether `shows` holds for it.
    template <class Shows>
    void Player(const Data::Channels::Guid& id, Shows shows) {
        Server(id);
        const auto found = source.Players().find(id);
        auto state = found == source.Players().end() ? nullptr : found->second;
        settlement.players[id] = state;
        visible = visible && state && shows(*state);
    }

    template <class Shows>
    void Recorder(const Data::Channels::Guid& id, Shows shows) {
        Server(id);
        const auto found = source.Recorders().find(id);
        auto recorder = found == source.Recorders().end() ? nullptr : found->second;
        settlement.recorders[id] = recorder;
        visible = visible && recorder && shows(*recorder);
    }

    template <class Shows>
    void ClipItem(const std::string& umId, Shows shows) {
        catalogue = true;
        auto clip = source.FindClip(umId);
        settlement.clips[umId] = clip;
        visible = visible && shows(clip);
    }

    void Unknown(std::string why) {
        unknown = true;
        settlement.detail = std::move(why);
    }

    void Decide() {
        for (int server : servers) {
            const auto found = source.Servers().find(server);
            if (found == source.Servers().end() || found->second.state != SyncState::Live) {
                Wait("server " + std::to_string(server) + " is not live again yet");
                return;
            }
        }
        if (catalogue && source.CatalogueState() != SyncState::Live) {
            Wait("the catalogue is not live again yet");
            return;
        }
        if (unknown) {
            settlement.verdict = Verdict::Unknown;
            return;
        }
        settlement.verdict = visible ? Verdict::Visible : Verdict::NotVisible;
        settlement.detail = visible ? "the resynced state shows the command's effect"
                                    : "the resynced state does not show the command's effect";
    }

private:
    void Server(const Data::Channels::Guid& id) {
        if (id.GetType() == Data::Channels::Guid::Player ||
            id.GetType() == Data::Channels::Guid::Recorder) {
            servers.insert(id.GetServer());
        }
    }

    void Wait(std::string why) {
        settlement.verdict = Verdict::NotYet;
        settlement.detail = std::move(why);
    }

    const SourceSnapshot& source;
    Settlement& settlement;
    std::set<int> servers;
    bool catalogue = false;
    bool visible = true;
    bool unknown = false;
};

}  // namespace

Settlement Mirror::Settle(const Commands::CommandParams& sent, std::size_t index) const {
    const auto snapshot = Snapshot();
    const auto& source = snapshot.Source(index);
    Settlement settlement;
    Judge judge(source, settlement);
    if (const auto* play = dynamic_cast<const Commands::PlayCommandParams*>(&sent)) {
        for (const auto& id : play->players) {
            judge.Player(id, [&](const PlayerState& state) {
                if (play->speedNum == 0) {  // a pause: loaded, not moving
                    return state.loadedMaterialType != 0 && state.infoOnAir.speedNumerator == 0;
                }
                return state.playMode == kPlaying &&
                       std::int64_t{state.infoOnAir.speedNumerator} * play->speedDen ==
                           std::int64_t{play->speedNum} * state.infoOnAir.speedDenominator;
            });
        }
    } else if (const auto* load = dynamic_cast<const Commands::LoadClipsCommandParams*>(&sent)) {
        for (const auto& [id, what] : load->playersParameters) {
            const std::string& clip = what.clip.GetValue();
            judge.Player(id, [&clip](const PlayerState& state) {
                return state.loadedClipUmId == clip;
            });
        }
    } else if (const auto* idle = dynamic_cast<const Commands::GoIdleCommandParams*>(&sent)) {
        for (const auto& id : idle->players) {
            judge.Player(id, [](const PlayerState& state) { return state.playMode == kIdle; });
        }
    } else if (const auto* live = dynamic_cast<const Commands::LiveCommandParams*>(&sent)) {
        for (const auto& [id, feed] : live->players) {
            judge.Player(id, [](const PlayerState& state) { return state.playMode == kLive; });
        }
    } else if (const auto* step = dynamic_cast<const Commands::StepCommandParams*>(&sent)) {
        for (const auto& id : step->players) {
            judge.Player(id, [](const PlayerState&) { return true; });
        }
        judge.Unknown("a step moves a player relative to where it was; the state cannot show it");
    } else if (const auto* start = dynamic_cast<const Commands::StartCommandParams*>(&sent)) {
        for (const auto& id : start->recorders) {
            judge.Recorder(id, [](const MirroredRecorder& r) { return r.state.isRecording; });
        }
    } else if (const auto* stop = dynamic_cast<const Commands::StopCommandParams*>(&sent)) {
        for (const auto& id : stop->recorders) {
            judge.Recorder(id, [](const MirroredRecorder& r) { return !r.state.isRecording; });
        }
    } else if (const auto* create = dynamic_cast<const Commands::CreateClipsCommandParams*>(&sent)) {
        bool named = true;
        for (const auto& clip : create->clips) {
            if (clip.clip.umId.find_first_not_of(' ') == std::string::npos) {
                named = false;  // the server chooses the identifier: nothing to look for
                continue;
            }
            judge.ClipItem(clip.clip.umId, [](const auto& found) { return found != nullptr; });
        }
        if (!named) {
            judge.Unknown("a clip created without an identifier cannot be told from others");
        }
    } else if (const auto* update = dynamic_cast<const Commands::UpdateClipsCommandParams*>(&sent)) {
        for (const auto& change : update->clips) {
            judge.ClipItem(change.oldClip.umId, [&](const auto& found) {
                if (!found) {
                    return false;
                }
                auto expected = change.newClip;
                expected.umId = found->umId;  // a clip keeps its identifier
                return *found == expected;
            });
        }
    } else if (const auto* remove = dynamic_cast<const Commands::DeleteClipsCommandParams*>(&sent)) {
        for (const auto& id : remove->clips) {
            judge.ClipItem(id.GetValue(), [](const auto& found) { return found == nullptr; });
        }
    } else {
        judge.Unknown("this command's effect is not judged from the state");
    }
    judge.Decide();
    return settlement;
}

}  // namespace Korvo::Plexis::Tessel::Client

#include "mirror/MirrorEngine.h"

#include <algorithm>
#include <stdexcept>

#include <Korvo/Common/Messaging/Client/Subscription.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetAnglesGroupsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetAnglesGroupsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetChannelsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetServersCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetTrainsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetTrainsCommandReply.h>
#include <Korvo/Plexis/Tessel/Logging/Log.h>
#include <Korvo/Plexis/Tessel/Logging/Loggers.h>

namespace Korvo::Plexis::Tessel::Client::Detail {

namespace {

namespace Commands = HighLevelOperations::Commands;
using Common::Messaging::ConnectionState;
using Logging::ILogger;
using Data::Channels::PlayerState;
using Data::Channels::RecorderState;
using Data::Clips::Clip;

constexpr const char* kSource = "Korvo/Plexis/Tessel/Client/Mirror";
// How often the mirror's thread looks at its links and clocks when nothing arrives.
constexpr auto kTick = std::chrono::milliseconds(50);
// How long a failed listing waits before it is tried again on a link that is up.
constexpr auto kRetry = std::chrono::milliseconds(250);

const char* const kDifferenceNames[kDifferenceKinds] = {
    "servers", "players", "recorders", "clips", "playlists", "angles groups", "trains"};

// A rough count of the bytes a held notification costs: its object and the clips it carries.
template <class Args>
std::size_t SizeOf(const Args&) {
    return sizeof(Args) + 256;
}

// The argument class of a notification callback.
template <class Callback>
struct ArgumentOf;
template <class Args>
struct ArgumentOf<std::function<void(const Args&)>> {
    using Type = Args;
};

bool IsBlank(const std::string& text) {
    return text.find_first_not_of(' ') == std::string::npos;
}

template <class Map, class Key, class Item>
std::shared_ptr<const Map> With(const std::shared_ptr<const Map>& map, const Key& key,
                                std::shared_ptr<const Item> item) {
    auto copy = std::make_shared<Map>(*map);
    if (item) {
        (*copy)[key] = std::move(item);
    } else {
        copy->erase(key);
    }
    return copy;
}

template <class Item>
bool Same(const std::shared_ptr<const Item>& left, const std::shared_ptr<const Item>& right) {
    if (!left || !right) {
        return left == right;
    }
    return *left == *right;
}

bool SameSteady(const std::shared_ptr<const PlayerState>& left,
                const std::shared_ptr<const PlayerState>& right) {
    return left && right && Steady(*left) == Steady(*right);
}

bool SameSteady(const std::shared_ptr<const MirroredRecorder>& left,
                const std::shared_ptr<const MirroredRecorder>& right) {
    return left && right && Steady(left->state) == Steady(right->state);
}

bool SameSteady(const std::shared_ptr<const Data::Clips::Train>& left,
                const std::shared_ptr<const Data::Clips::Train>& right) {
    return left && right && Steady(*left) == Steady(*right);
}

}  // namespace

std::shared_ptr<const ClipTable> ClipTable::Empty() {
    auto table = std::make_shared<ClipTable>();
    auto empty = std::make_shared<const ClipChunk>();
    table->chunks.assign(kChunks, empty);
    return table;
}

namespace {
bool ByUmId(const ClipPtr& clip, const std::string& umId) { return clip->umId < umId; }
}  // namespace

ClipPtr ClipTable::Find(const std::string& umId) const {
    const auto& clips = chunks[ChunkOf(umId)]->clips;
    const auto found = std::lower_bound(clips.begin(), clips.end(), umId, ByUmId);
    return found != clips.end() && (*found)->umId == umId ? *found : nullptr;
}

ClipPtr ClipEditor::Find(const std::string& umId) const { return Current().Find(umId); }

ClipChunk& ClipEditor::Own(std::size_t chunk) {
    if (!draft) {
        draft = std::make_shared<ClipTable>(*frozen);
        owned.assign(ClipTable::kChunks, nullptr);
    }
    if (!owned[chunk]) {
        owned[chunk] = std::make_shared<ClipChunk>(*draft->chunks[chunk]);
        draft->chunks[chunk] = owned[chunk];
    }
    return *owned[chunk];
}

ClipPtr ClipEditor::Put(ClipPtr clip) {
    auto& clips = Own(ClipTable::ChunkOf(clip->umId)).clips;
    const auto found = std::lower_bound(clips.begin(), clips.end(), clip->umId, ByUmId);
    if (found != clips.end() && (*found)->umId == clip->umId) {
        std::swap(*found, clip);
        return clip;
    }
    clips.insert(found, std::move(clip));
    ++draft->count;
    return nullptr;
}

ClipPtr ClipEditor::Erase(const std::string& umId) {
    if (!Find(umId)) {
        return nullptr;
    }
    auto& clips = Own(ClipTable::ChunkOf(umId)).clips;
    const auto found = std::lower_bound(clips.begin(), clips.end(), umId, ByUmId);
    ClipPtr erased = std::move(*found);
    clips.erase(found);
    --draft->count;
    return erased;
}

std::shared_ptr<const ClipTable> ClipEditor::Freeze() {
    if (draft) {
        frozen = std::move(draft);
        draft.reset();
        owned.clear();
    }
    return frozen;
}

PlayerState Steady(PlayerState state) {
    state.timestamp = 0;
    state.currentTimepoint = 0;
    state.currentTimecode.clear();
    state.remainingTimecode.clear();
    state.infoOnAir = {};
    const auto onAir = [](Data::Channels::PlayerClipOnAir clip) {
        Data::Channels::PlayerClipOnAir steady;
        steady.clip = std::move(clip.clip);
        return steady;
    };
    state.currentClip = onAir(std::move(state.currentClip));
    state.nextClip = onAir(std::move(state.nextClip));
    return state;
}

RecorderState Steady(RecorderState state) {
    state.timestamp = 0;
    state.currentTimepoint = 0;
    state.currentTimecode.clear();
    state.recordedFields = 0;
    state.remainingFields = 0;
    return state;
}

Data::Clips::Train Steady(Data::Clips::Train train) {
    if (train.isRecording && !train.recordingRanges.empty()) {
        train.recordingRanges.back().outTimepoint = 0;
        train.recordingRanges.back().outTimecode.clear();
    }
    return train;
}

// ---------------------------------------------------------------------------------------------
// Life cycle

MirrorEngine::MirrorEngine(MirrorOptions givenOptions)
    : options(std::move(givenOptions)),
      logger(Logging::Loggers::GetInstance().GetLogger("Mirror")) {
    if (options.sources.empty()) {
        throw std::invalid_argument("Mirror: no source to mirror.");
    }
    if (options.channelCheckPeriod.count() <= 0 || options.catalogueCheckPeriod.count() <= 0 ||
        options.listingTimeLimit.count() <= 0) {
        throw std::invalid_argument("Mirror: periods and time limits must be positive.");
    }
    for (std::size_t i = 0; i < options.sources.size(); ++i) {
        auto connectionOptions = options.sources[i];
        connectionOptions.topics.clear();
        auto source = std::make_unique<Source>();
        source->index = i;
        source->name = connectionOptions.name;
        source->servers = std::make_shared<const std::map<int, MirroredServer>>();
        source->players = std::make_shared<const SharedMap<Data::Channels::Guid, PlayerState>>();
        source->recorders =
            std::make_shared<const SharedMap<Data::Channels::Guid, MirroredRecorder>>();
        source->playlists =
            std::make_shared<const SharedMap<std::string, Data::Sequences::Playlist>>();
        source->anglesGroups =
            std::make_shared<const SharedMap<std::string, Data::Clips::Groups::AnglesGroup>>();
        source->trains = std::make_shared<const SharedMap<std::string, Data::Clips::Train>>();
        source->connection = std::make_unique<Connection>(std::move(connectionOptions));
        sources.push_back(std::move(source));
    }
    for (auto& source : sources) {
        Attach(*source);
    }
    published.resize(sources.size());
    Publish();
    thread = std::thread([this] { Run(); });
    threadId = thread.get_id();
}

MirrorEngine::~MirrorEngine() { Stop(); }

void MirrorEngine::Stop() {
    {
        std::lock_guard<std::mutex> lock(inboxMutex);
        if (stopping) {
            return;
        }
        stopping = true;
    }
    inboxChanged.notify_all();
    if (thread.joinable()) {
        thread.join();
    }
    // The connections end their pending listings; what their callbacks post is not run.
    for (auto& source : sources) {
        if (auto* notifications = source->connection->Notifications()) {
            notifications->GetSubscription().SetConnectionStateHandler({});
        }
        source->connection->Unwatch(source->commandWatcher);
        source->connection.reset();
    }
}

void MirrorEngine::Attach(Source& source) {
    const std::size_t index = source.index;
    const auto linkState = [this, index](ConnectionState state) {
        if (state != ConnectionState::Connected) {
            ++sources[index]->linkDrops;
        }
        Post({[] {}});  // wakes the mirror's thread to look at the links
    };
    source.commandWatcher = source.connection->Watch(linkState);
    auto* notifications = source.connection->Notifications();
    if (!notifications) {
        return;
    }
    notifications->GetSubscription().SetConnectionStateHandler(
        [linkState](const Common::Messaging::EndPoint&, ConnectionState state) { linkState(state); });
    auto lock = notifications->LockHandlers();
    auto forward = [this, index](auto& handlers) {
        using Handlers = std::decay_t<decltype(handlers)>;
        using Args = typename ArgumentOf<typename Handlers::value_type>::Type;
        handlers.push_back([this, index](const Args& args) {
            if constexpr (std::is_base_of_v<Events::MassClipUpdateEventArgs, Args> ||
                          std::is_base_of_v<Events::MassClipDeletionEventArgs, Args>) {
                PostNotice(index, MassClipChange{}, SizeOf(args));
            } else {
                PostNotice(index, Notice(args), SizeOf(args));
            }
        });
    };
    forward(notifications->playerStateChangedHandlers);
    forward(notifications->recorderStateChangedHandlers);
    forward(notifications->recordingRangesChangedHandlers);
    forward(notifications->serverAddedHandlers);
    forward(notifications->serverRemovedHandlers);
    forward(notifications->disconnectedFromNetworkHandlers);
    forward(notifications->clipCreationFinishedHandlers);
    forward(notifications->clipUpdateFinishedHandlers);
    forward(notifications->clipMoveFinishedHandlers);
    forward(notifications->clipDeletionFinishedHandlers);
    forward(notifications->massClipUpdateFinishedHandlers);
    forward(notifications->massClipDeletionFinishedHandlers);
    forward(notifications->anglesGroupCreationFinishedHandlers);
    forward(notifications->anglesGroupUpdateFinishedHandlers);
    forward(notifications->anglesGroupDeletionFinishedHandlers);
}

void MirrorEngine::Post(Task task) {
    {
        std::lock_guard<std::mutex> lock(inboxMutex);
        if (stopping) {
            return;
        }
        inbox.push_back(std::move(task));
    }
    inboxChanged.notify_one();
}

void MirrorEngine::PostNotice(std::size_t index, Notice notice, std::size_t bytes) {
    {
        std::lock_guard<std::mutex> lock(inboxMutex);
        if (stopping) {
            return;
        }
        if (inboxBytes + bytes > options.heldNotificationBytes) {
            sources[index]->overflowed.store(true);
            std::lock_guard<std::mutex> count(statisticsMutex);
            ++statistics.notificationsDropped;
            return;
        }
        inboxBytes += bytes;
        inbox.push_back({[this, index, bytes, notice = std::move(notice)]() mutable {
                             OnNotice(*sources[index], std::move(notice), bytes);
                         },
                         bytes});
    }
    inboxChanged.notify_one();
}

void MirrorEngine::Run() {
    auto nextTick = Clock::now();
    for (;;) {
        std::deque<Task> tasks;
        {
            std::unique_lock<std::mutex> lock(inboxMutex);
            inboxChanged.wait_until(lock, nextTick, [&] { return stopping || !inbox.empty(); });
            if (stopping) {
                return;
            }
            tasks.swap(inbox);
            inboxBytes = 0;
        }
        for (auto& task : tasks) {
            task.run();
            // Publish before telling anyone, so that a watcher's snapshot shows the change.
            if (!pendingEvents.empty()) {
                Publish();
                Deliver();
            }
        }
        const auto now = Clock::now();
        if (now >= nextTick || tasks.empty()) {
            Tick(now);
            nextTick = now + kTick;
        }
        Publish();
        Deliver();
    }
}

// ---------------------------------------------------------------------------------------------
// Links, clocks and listings

void MirrorEngine::Tick(Clock::time_point now) {
    for (auto& source : sources) {
        CheckLinks(*source, now);
        if (source->overflowed.exchange(false)) {
            if (const auto admitted = dropLog.Admit()) {
                KORVO_LOG_COMPOSED(logger, ILogger::Warning, [&] {
                    return source->name + ": notifications dropped while the mirror was busy; "
                                          "listing again." + Logging::Suppressed(*admitted);
                });
            }
            Need(*source, kChannels, "notifications dropped");
            Need(*source, kCatalogue, "notifications dropped");
        }
        if (auto* notifications = source->connection->Notifications()) {
            const auto dropped = notifications->GetSubscription().GetDroppedCount();
            if (dropped != source->droppedSeen) {
                source->droppedSeen = dropped;
                Need(*source, kChannels, "the subscription dropped notifications");
                Need(*source, kCatalogue, "the subscription dropped notifications");
            }
        }
        StartJobs(*source, now);
    }
}

void MirrorEngine::CheckLinks(Source& source, Clock::time_point now) {
    bool up = source.connection->GetState() == ConnectionState::Connected;
    if (auto* notifications = source.connection->Notifications()) {
        for (const auto state : notifications->GetSubscription().GetConnectionStates()) {
            up = up && state == ConnectionState::Connected;
        }
    }
    const auto drops = source.linkDrops.load();
    const bool flapped = drops != source.linkDropsSeen;
    source.linkDropsSeen = drops;
    if (up == source.linksUp && !flapped) {
        return;
    }
    if (source.linksUp) {
        source.linksUp = false;
        // Whatever was under way is abandoned; everything is listed again once the links return.
        for (Part part : {kChannels, kCatalogue}) {
            Abandon(source, part);
            source.jobs[part].needed = true;
        }
        SetAllServers(source, SyncState::Lost, false);
        SetCatalogueState(source, SyncState::Lost, false);
    }
    if (!up) {
        return;
    }
    source.linksUp = true;
    for (int part : {kChannels, kCatalogue}) {
        source.jobs[part].needed = true;
        source.jobs[part].retryAt = now;
    }
    SetAllServers(source, SyncState::Stale, false);
    if (source.catalogueState == SyncState::Lost) {
        SetCatalogueState(source, SyncState::Stale, false);
    }
}

void MirrorEngine::Need(Source& source, Part part, const char* why) {
    auto& job = source.jobs[part];
    if (!job.needed) {
        job.needed = true;
        {
            std::lock_guard<std::mutex> lock(statisticsMutex);
            ++statistics.resyncs;
        }
        if (const auto admitted = resyncLog.Admit()) {
            KORVO_LOG_COMPOSED(logger, ILogger::Info, [&] {
                return source.name + ": listing the " +
                       (part == kChannels ? "servers and channels" : "catalogue") + " again (" +
                       why + ")." + Logging::Suppressed(*admitted);
            });
        }
    }
    if (part == kChannels) {
        for (const auto& [id, server] : *source.servers) {
            if (server.state == SyncState::Live) {
                SetServerState(source, id, SyncState::Stale, false);
            }
        }
    } else if (source.catalogueState == SyncState::Live) {
        SetCatalogueState(source, SyncState::Stale, false);
    }
}

void MirrorEngine::StartJobs(Source& source, Clock::time_point now) {
    if (!source.linksUp) {
        return;
    }
    for (int part : {kChannels, kCatalogue}) {
        auto& job = source.jobs[part];
        if (job.busy) {
            continue;
        }
        const bool wanted = job.needed ? now >= job.retryAt : now >= job.nextCheck;
        if (!wanted) {
            continue;
        }
        // Channels first: on one link a catalogue listing would hold their replies back.
        const auto& channels = source.jobs[kChannels];
        if (part == kCatalogue && (channels.needed || (channels.busy && !channels.verifying))) {
            continue;
        }
        job.verifying = !job.needed;
        job.needed = false;
        job.busy = true;
        job.found = {};
        if (part == kChannels) {
            StartChannels(source);
        } else {
            StartCatalogue(source);
        }
    }
}

bool MirrorEngine::Current(const Source& source, Part part, std::uint64_t generation) const {
    return source.jobs[part].busy && source.jobs[part].generation == generation;
}

void MirrorEngine::Abandon(Source& source, Part part) {
    auto& job = source.jobs[part];
    if (!job.busy) {
        return;
    }
    ++job.generation;
    job.busy = false;
    job.needed = true;
    job.retryAt = Clock::now();
    // What was held is newer than what the mirror had before the listing: apply it.
    auto held = std::move(job.held);
    job.held.clear();
    job.heldBytes = 0;
    for (auto& notice : held) {
        Apply(source, notice.notice, nullptr);
    }
}

void MirrorEngine::JobFailed(Source& source, Part part, const std::string& why) {
    Abandon(source, part);
    source.jobs[part].retryAt = Clock::now() + kRetry;
    if (const auto admitted = resyncLog.Admit()) {
        KORVO_LOG_COMPOSED(logger, ILogger::Info, [&] {
            return source.name + ": listing failed (" + why + "); trying again." +
                   Logging::Suppressed(*admitted);
        });
    }
}

void MirrorEngine::StartChannels(Source& source) {
    const auto generation = ++source.jobs[kChannels].generation;
    const std::size_t index = source.index;
    CallOptions<Commands::GetServersCommandParams> call;
    call.timeLimit = options.listingTimeLimit;
    call.onDone = [this, index, generation](const Operation<Commands::GetServersCommandParams>& op) {
        const auto* reply = op.Get<Commands::GetServersCommandReply>();
        auto servers = reply ? std::make_shared<std::vector<Data::Servers::ServerInfo>>(reply->servers)
                             : nullptr;
        std::string why = ToString(op.GetOutcome());
        Post({[this, index, generation, servers, why] {
            auto& source = *sources[index];
            if (!Current(source, kChannels, generation)) {
                return;
            }
            if (!servers) {
                JobFailed(source, kChannels, why);
                return;
            }
            source.listedServers = std::move(*servers);
            CallOptions<Commands::GetChannelsCommandParams> channels;
            channels.timeLimit = options.listingTimeLimit;
            channels.onDone = [this, index,
                               generation](const Operation<Commands::GetChannelsCommandParams>& op) {
                const auto* reply = op.Get<Commands::GetChannelsCommandReply>();
                auto listed = reply ? std::make_shared<Commands::GetChannelsCommandReply>(*reply)
                                    : nullptr;
                std::string why = ToString(op.GetOutcome());
                Post({[this, index, generation, listed, why] {
                    auto& source = *sources[index];
                    if (!Current(source, kChannels, generation)) {
                        return;
                    }
                    if (!listed) {
                        JobFailed(source, kChannels, why);
                        return;
                    }
                    const bool verifying = source.jobs[kChannels].verifying;
                    ApplyServers(source, source.listedServers, verifying);
                    ApplyChannels(source, *listed, verifying);
                    FinishJob(source, kChannels);
                }});
            };
            source.connection->Send(Commands::GetChannelsCommandParams{}, std::move(channels));
        }});
    };
    source.connection->Send(Commands::GetServersCommandParams{}, std::move(call));
}

template <class Event, class Item, class KeyOf, class SameFn>
void MirrorEngine::Relist(Source& source, Difference kind,
                          std::shared_ptr<const SharedMap<std::string, Item>>& current,
                          std::vector<Item>& listed, KeyOf keyOf, SameFn same,
                          bool shareUnchanged) {
    const bool verifying = source.jobs[kCatalogue].verifying;
    auto next = std::make_shared<SharedMap<std::string, Item>>();
    for (auto& item : listed) {
        auto key = keyOf(item);
        (*next)[key] = std::make_shared<const Item>(std::move(item));
    }
    for (const auto& [key, before] : *current) {
        if (next->count(key) == 0) {
            Found(source, kind, verifying);
            Emit(Event{source.index, key, Change::Removed, before, nullptr});
        }
    }
    for (auto& [key, after] : *next) {
        const auto found = current->find(key);
        if (found == current->end()) {
            Found(source, kind, verifying);
            Emit(Event{source.index, key, Change::Added, nullptr, after});
        } else if (!same(found->second, after)) {
            Found(source, kind, verifying);
            Emit(Event{source.index, key, Change::Updated, found->second, after});
        } else if (shareUnchanged) {
            after = found->second;
        }
    }
    current = std::move(next);
    source.dirty = true;
}

void MirrorEngine::StartCatalogue(Source& source) {
    const auto generation = ++source.jobs[kCatalogue].generation;
    const std::size_t index = source.index;
    source.seenClips.clear();

    // Clips part by part, then playlists, angles groups and trains, one after the other.
    auto trains = [this, index, generation] {
        CallOptions<Commands::GetTrainsCommandParams> call;
        call.timeLimit = options.listingTimeLimit;
        call.onDone = [this, index, generation](const Operation<Commands::GetTrainsCommandParams>& op) {
            const auto* reply = op.Get<Commands::GetTrainsCommandReply>();
            auto listed = reply ? std::make_shared<std::vector<Data::Clips::Train>>(reply->trains)
                                : nullptr;
            std::string why = ToString(op.GetOutcome());
            Post({[this, index, generation, listed, why] {
                auto& source = *sources[index];
                if (!Current(source, kCatalogue, generation)) {
                    return;
                }
                if (!listed) {
                    JobFailed(source, kCatalogue, why);
                    return;
                }
                // Trains record all the time: an unchanged one keeps its newer moving fields.
                Relist<TrainChanged>(
                    source, Difference::Train, source.trains, *listed,
                    [](const Data::Clips::Train& train) { return train.clip.umId; },
                    [](const auto& before, const auto& after) { return SameSteady(before, after); },
                    false);
                FinishJob(source, kCatalogue);
            }});
        };
        sources[index]->connection->Send(Commands::GetTrainsCommandParams{}, std::move(call));
    };

    auto groups = [this, index, generation, trains] {
        CallOptions<Commands::GetAnglesGroupsCommandParams> call;
        call.timeLimit = options.listingTimeLimit;
        call.onDone = [this, index, generation,
                       trains](const Operation<Commands::GetAnglesGroupsCommandParams>& op) {
            const auto* reply = op.Get<Commands::GetAnglesGroupsCommandReply>();
            auto listed =
                reply ? std::make_shared<std::vector<Data::Clips::Groups::AnglesGroup>>(
                            reply->anglesGroups)
                      : nullptr;
            std::string why = ToString(op.GetOutcome());
            Post({[this, index, generation, listed, why, trains] {
                auto& source = *sources[index];
                if (!Current(source, kCatalogue, generation)) {
                    return;
                }
                if (!listed) {
                    JobFailed(source, kCatalogue, why);
                    return;
                }
                Relist<AnglesGroupChanged>(
                    source, Difference::AnglesGroup, source.anglesGroups, *listed,
                    [](const Data::Clips::Groups::AnglesGroup& group) {
                        return group.groupGuid.GetValue();
                    },
                    [](const auto& before, const auto& after) { return Same(before, after); },
                    true);
                trains();
            }});
        };
        sources[index]->connection->Send(Commands::GetAnglesGroupsCommandParams{}, std::move(call));
    };

    auto playlists = [this, index, generation, groups] {
        CallOptions<Commands::GetPlaylistsCommandParams> call;
        call.timeLimit = options.listingTimeLimit;
        call.onDone = [this, index, generation,
                       groups](const Operation<Commands::GetPlaylistsCommandParams>& op) {
            const auto* reply = op.Get<Commands::GetPlaylistsCommandReply>();
            auto listed =
                reply ? std::make_shared<std::vector<Data::Sequences::Playlist>>(reply->playlists)
                      : nullptr;
            std::string why = ToString(op.GetOutcome());
            Post({[this, index, generation, listed, why, groups] {
                auto& source = *sources[index];
                if (!Current(source, kCatalogue, generation)) {
                    return;
                }
                if (!listed) {
                    JobFailed(source, kCatalogue, why);
                    return;
                }
                Relist<PlaylistChanged>(
                    source, Difference::Playlist, source.playlists, *listed,
                    [](const Data::Sequences::Playlist& playlist) { return playlist.sequence.umId; },
                    [](const auto& before, const auto& after) { return Same(before, after); },
                    true);
                groups();
            }});
        };
        sources[index]->connection->Send(Commands::GetPlaylistsCommandParams{}, std::move(call));
    };

    CallOptions<Commands::GetClipsCommandParams> call;
    call.timeLimit = options.listingTimeLimit;
    call.onPart = [this, index, generation](const Commands::GetClipsCommandReply& part) {
        auto clips = std::make_shared<std::vector<Clip>>(part.clips);
        Post({[this, index, generation, clips] {
            auto& source = *sources[index];
            if (Current(source, kCatalogue, generation)) {
                ApplyClipPart(source, *clips, source.jobs[kCatalogue].verifying);
            }
        }});
    };
    call.onDone = [this, index, generation,
                   playlists](const Operation<Commands::GetClipsCommandParams>& op) {
        const auto* reply = op.Get<Commands::GetClipsCommandReply>();
        auto clips = reply ? std::make_shared<std::vector<Clip>>(reply->clips) : nullptr;
        std::string why = ToString(op.GetOutcome());
        Post({[this, index, generation, clips, why, playlists] {
            auto& source = *sources[index];
            if (!Current(source, kCatalogue, generation)) {
                return;
            }
            if (!clips) {
                JobFailed(source, kCatalogue, why);
                return;
            }
            const bool verifying = source.jobs[kCatalogue].verifying;
            ApplyClipPart(source, *clips, verifying);
            SweepClips(source, verifying);
            playlists();
        }});
    };
    source.connection->Send(Commands::GetClipsCommandParams{}, std::move(call));
}

void MirrorEngine::FinishJob(Source& source, Part part) {
    auto& job = source.jobs[part];
    const bool wasFollowUp = job.followUp;
    job.busy = false;
    job.followUp = false;
    job.nextCheck = Clock::now() + (part == kChannels ? options.channelCheckPeriod
                                                      : options.catalogueCheckPeriod);
    // What arrived during the listing may be older or newer than it: apply it in order, then,
    // when it touched what was listed, read those parts again once to settle which is right.
    std::set<std::string> touched;
    for (auto& held : job.held) {
        Apply(source, held.notice, &touched);
    }
    job.held.clear();
    job.heldBytes = 0;
    ReportDifferences(source, part);
    {
        std::lock_guard<std::mutex> lock(statisticsMutex);
        ++statistics.verifications;
    }
    if (!touched.empty() && !wasFollowUp && part == kChannels) {
        job.needed = true;
        job.followUp = true;
        job.retryAt = Clock::now();
        return;
    }
    if (job.needed) {
        return;  // something was missed meanwhile: stay stale until the next listing
    }
    if (part == kChannels) {
        SetAllServers(source, SyncState::Live, true);
    } else {
        SetCatalogueState(source, SyncState::Live, true);
    }
}

void MirrorEngine::Resync(std::size_t index) {
    Post({[this, index] {
        auto& source = *sources.at(index);
        Need(source, kChannels, "asked for");
        Need(source, kCatalogue, "asked for");
        source.jobs[kChannels].retryAt = source.jobs[kCatalogue].retryAt = Clock::now();
    }});
}

// ---------------------------------------------------------------------------------------------
// Applying listings

void MirrorEngine::Found(Source& source, Difference kind, bool verifying) {
    if (verifying) {
        const bool channels = kind == Difference::Server || kind == Difference::Player ||
                              kind == Difference::Recorder;
        ++source.jobs[channels ? kChannels : kCatalogue].found[static_cast<std::size_t>(kind)];
    }
}

void MirrorEngine::ReportDifferences(Source& source, Part part) {
    auto& found = source.jobs[part].found;
    std::uint64_t total = 0;
    std::string text;
    for (std::size_t kind = 0; kind < kDifferenceKinds; ++kind) {
        if (found[kind] != 0) {
            total += found[kind];
            text += (text.empty() ? "" : ", ") + std::string(kDifferenceNames[kind]) + " " +
                    std::to_string(found[kind]);
        }
    }
    if (total == 0) {
        return;
    }
    {
        std::lock_guard<std::mutex> lock(statisticsMutex);
        for (std::size_t kind = 0; kind < kDifferenceKinds; ++kind) {
            statistics.differences[kind] += found[kind];
        }
    }
    found = {};
    if (const auto admitted = differenceLog.Admit()) {
        KORVO_LOG_COMPOSED(logger, ILogger::Warning, [&] {
            return source.name + ": the check found " + std::to_string(total) +
                   " difference(s) with the server (" + text + "); the mirror took the server's." +
                   Logging::Suppressed(*admitted);
        });
    }
}

void MirrorEngine::ApplyServers(Source& source, const std::vector<Data::Servers::ServerInfo>& listed,
                                bool verifying) {
    auto next = std::make_shared<std::map<int, MirroredServer>>();
    for (const auto& info : listed) {
        const auto found = source.servers->find(info.serverId);
        MirroredServer server;
        server.info = info;
        if (found == source.servers->end()) {
            Found(source, Difference::Server, verifying);
            server.state = SyncState::Syncing;
            Emit(ServerChanged{source.index, info.serverId, Change::Added, nullptr,
                               std::make_shared<const Data::Servers::ServerInfo>(info)});
        } else {
            server.state = found->second.state;
            server.confirmedAt = found->second.confirmedAt;
            if (!(found->second.info == info)) {
                Found(source, Difference::Server, verifying);
                Emit(ServerChanged{source.index, info.serverId, Change::Updated,
                                   std::make_shared<const Data::Servers::ServerInfo>(found->second.info),
                                   std::make_shared<const Data::Servers::ServerInfo>(info)});
            }
        }
        (*next)[info.serverId] = std::move(server);
    }
    for (const auto& [id, server] : *source.servers) {
        if (next->count(id) == 0) {
            Found(source, Difference::Server, verifying);
            Emit(ServerChanged{source.index, id, Change::Removed,
                               std::make_shared<const Data::Servers::ServerInfo>(server.info),
                               nullptr});
        }
    }
    source.servers = std::move(next);
    source.dirty = true;
}

void MirrorEngine::ApplyChannels(Source& source,
                                 const Commands::GetChannelsCommandReply& reply, bool verifying) {
    auto players = std::make_shared<SharedMap<Data::Channels::Guid, PlayerState>>();
    for (const auto& [id, state] : reply.playerStates) {
        auto after = std::make_shared<const PlayerState>(state);
        const auto found = source.players->find(id);
        if (found == source.players->end()) {
            Found(source, Difference::Player, verifying);
            Emit(PlayerChanged{source.index, id, Change::Added, nullptr, after});
        } else if (!SameSteady(found->second, after)) {
            Found(source, Difference::Player, verifying);
            Emit(PlayerChanged{source.index, id, Change::Updated, found->second, after});
        }
        (*players)[id] = std::move(after);
    }
    for (const auto& [id, before] : *source.players) {
        if (players->count(id) == 0) {
            Found(source, Difference::Player, verifying);
            Emit(PlayerChanged{source.index, id, Change::Removed, before, nullptr});
        }
    }
    auto recorders = std::make_shared<SharedMap<Data::Channels::Guid, MirroredRecorder>>();
    for (const auto& [id, state] : reply.recorderStates) {
        auto mirrored = std::make_shared<MirroredRecorder>();
        mirrored->state = state;
        const auto found = source.recorders->find(id);
        if (found != source.recorders->end()) {
            mirrored->ranges = found->second->ranges;
            mirrored->isLoopRecording = found->second->isLoopRecording;
        }
        std::shared_ptr<const MirroredRecorder> after = std::move(mirrored);
        if (found == source.recorders->end()) {
            Found(source, Difference::Recorder, verifying);
            Emit(RecorderChanged{source.index, id, Change::Added, nullptr, after});
        } else if (!SameSteady(found->second, after)) {
            Found(source, Difference::Recorder, verifying);
            Emit(RecorderChanged{source.index, id, Change::Updated, found->second, after});
        }
        (*recorders)[id] = std::move(after);
    }
    for (const auto& [id, before] : *source.recorders) {
        if (recorders->count(id) == 0) {
            Found(source, Difference::Recorder, verifying);
            Emit(RecorderChanged{source.index, id, Change::Removed, before, nullptr});
        }
    }
    source.players = std::move(players);
    source.recorders = std::move(recorders);
    source.dirty = true;
}

void MirrorEngine::PutClip(Source& source, const Clip& clip, bool verifying) {
    auto before = source.clips.Find(clip.umId);
    if (before && *before == clip) {
        return;
    }
    auto after = std::make_shared<const Clip>(clip);
    source.clips.Put(after);
    Found(source, Difference::Clip, verifying);
    Emit(ClipChanged{source.index, clip.umId, before ? Change::Updated : Change::Added, before,
                     after});
    source.dirty = true;
}

void MirrorEngine::EraseClip(Source& source, const std::string& umId, bool verifying) {
    if (auto before = source.clips.Erase(umId)) {
        Found(source, Difference::Clip, verifying);
        Emit(ClipChanged{source.index, umId, Change::Removed, before, nullptr});
        source.dirty = true;
    }
}

void MirrorEngine::ApplyClipPart(Source& source, const std::vector<Clip>& clips, bool verifying) {
    for (const auto& clip : clips) {
        source.seenClips.insert(clip.umId);
        PutClip(source, clip, verifying);
    }
}

void MirrorEngine::SweepClips(Source& source, bool verifying) {
    std::vector<std::string> gone;
    for (const auto& chunk : source.clips.Current().chunks) {
        for (const auto& clip : chunk->clips) {
            if (source.seenClips.count(clip->umId) == 0) {
                gone.push_back(clip->umId);
            }
        }
    }
    for (const auto& umId : gone) {
        EraseClip(source, umId, verifying);
    }
    source.seenClips.clear();
    source.seenClips.rehash(0);
}

// ---------------------------------------------------------------------------------------------
// Applying notifications

namespace {

// Which listing a notification belongs to: while that listing runs, it is held.
Part PartOf(const Notice& notice) {
    return std::visit(
        [](const auto& args) {
            using Args = std::decay_t<decltype(args)>;
            if constexpr (std::is_same_v<Args, Events::PlayerStateChangedEventArgs> ||
                          std::is_same_v<Args, Events::RecorderStateChangedEventArgs> ||
                          std::is_same_v<Args, Events::RecordingRangesChangedEventArgs> ||
                          std::is_base_of_v<Events::ServerStatusEventArgs, Args>) {
                return kChannels;
            } else {
                return kCatalogue;
            }
        },
        notice);
}

}  // namespace

void MirrorEngine::OnNotice(Source& source, Notice notice, std::size_t bytes) {
    {
        std::lock_guard<std::mutex> lock(statisticsMutex);
        ++statistics.notificationsApplied;
    }
    const Part part = PartOf(notice);
    auto& job = source.jobs[part];
    const bool serverNotice = std::holds_alternative<Events::ServerAddedEventArgs>(notice) ||
                              std::holds_alternative<Events::ServerRemovedEventArgs>(notice) ||
                              std::holds_alternative<Events::DisconnectedFromNetworkEventArgs>(notice);
    if (job.busy && !serverNotice) {
        if (job.heldBytes + bytes > options.heldNotificationBytes) {
            {
                std::lock_guard<std::mutex> lock(statisticsMutex);
                statistics.notificationsDropped += job.held.size() + 1;
            }
            job.held.clear();
            job.heldBytes = 0;
            ++job.generation;
            job.busy = false;
            Need(source, part, "too many notifications during a listing");
            job.retryAt = Clock::now();
            return;
        }
        job.heldBytes += bytes;
        job.held.push_back({std::move(notice), bytes});
        return;
    }
    Apply(source, notice, nullptr);
}

void MirrorEngine::Apply(Source& source, const Notice& notice, std::set<std::string>* touched) {
    const auto touch = [&](const std::string& key) {
        if (touched) {
            touched->insert(key);
        }
    };
    std::visit(
        [&](const auto& args) {
            using Args = std::decay_t<decltype(args)>;
            if constexpr (std::is_same_v<Args, Events::PlayerStateChangedEventArgs>) {
                auto after = std::make_shared<const PlayerState>(args.state);
                const auto found = source.players->find(args.channelGuid);
                auto before = found == source.players->end() ? nullptr : found->second;
                touch(args.channelGuid.ToString());
                if (!Same(before, after)) {
                    source.players = With(source.players, args.channelGuid, after);
                    Emit(PlayerChanged{source.index, args.channelGuid,
                                       before ? Change::Updated : Change::Added, before, after});
                    source.dirty = true;
                }
            } else if constexpr (std::is_same_v<Args, Events::RecorderStateChangedEventArgs> ||
                                 std::is_same_v<Args, Events::RecordingRangesChangedEventArgs>) {
                const auto found = source.recorders->find(args.channelGuid);
                auto before = found == source.recorders->end() ? nullptr : found->second;
                auto mirrored = before ? std::make_shared<MirroredRecorder>(*before)
                                       : std::make_shared<MirroredRecorder>();
                if constexpr (std::is_same_v<Args, Events::RecorderStateChangedEventArgs>) {
                    mirrored->state = args.state;
                    touch(args.channelGuid.ToString());
                } else {  // ranges are not listed with the channels: nothing to settle
                    mirrored->ranges = args.ranges;
                    mirrored->isLoopRecording = args.isLoopRecording;
                }
                std::shared_ptr<const MirroredRecorder> after = std::move(mirrored);
                if (!Same(before, after)) {
                    source.recorders = With(source.recorders, args.channelGuid, after);
                    Emit(RecorderChanged{source.index, args.channelGuid,
                                         before ? Change::Updated : Change::Added, before, after});
                    source.dirty = true;
                }
            } else if constexpr (std::is_same_v<Args, Events::ServerAddedEventArgs>) {
                // A server announced again (a restart, a return to the network, or a new one):
                // whatever it did while away is unknown.
                // A listing under way may have lost its reply with the restart: start afresh.
                source.offNetwork.erase(args.server.serverId);
                for (Part part : {kChannels, kCatalogue}) {
                    Abandon(source, part);
                    Need(source, part, "a server was announced");
                }
            } else if constexpr (std::is_same_v<Args, Events::ServerRemovedEventArgs>) {
                const auto found = source.servers->find(args.serverId);
                if (found != source.servers->end()) {
                    auto servers = std::make_shared<std::map<int, MirroredServer>>(*source.servers);
                    auto info = std::make_shared<const Data::Servers::ServerInfo>(found->second.info);
                    SetServerState(source, args.serverId, SyncState::Lost, false);
                    servers->erase(args.serverId);
                    source.servers = std::move(servers);
                    Emit(ServerChanged{source.index, args.serverId, Change::Removed, info, nullptr});
                    source.dirty = true;
                }
                Need(source, kChannels, "a server was removed");
            } else if constexpr (std::is_same_v<Args, Events::DisconnectedFromNetworkEventArgs>) {
                source.offNetwork.insert(args.serverId);
                SetServerState(source, args.serverId, SyncState::Lost, false);
            } else if constexpr (std::is_same_v<Args, Events::ClipCreationFinishedEventArgs>) {
                touch(args.clip.umId);
                PutClip(source, args.clip, false);
            } else if constexpr (std::is_same_v<Args, Events::ClipUpdateFinishedEventArgs> ||
                                 std::is_same_v<Args, Events::ClipMoveFinishedEventArgs>) {
                bool applies = true;
                if constexpr (std::is_same_v<Args, Events::ClipUpdateFinishedEventArgs>) {
                    applies = args.succeeded;
                }
                if (applies) {
                    touch(args.newClip.umId);
                    if (!IsBlank(args.oldClip.umId) && args.oldClip.umId != args.newClip.umId) {
                        touch(args.oldClip.umId);
                        EraseClip(source, args.oldClip.umId, false);
                    }
                    PutClip(source, args.newClip, false);
                }
            } else if constexpr (std::is_same_v<Args, Events::ClipDeletionFinishedEventArgs>) {
                touch(args.clip.umId);
                EraseClip(source, args.clip.umId, false);
            } else if constexpr (std::is_same_v<Args, Events::AnglesGroupCreationFinishedEventArgs> ||
                                 std::is_same_v<Args, Events::AnglesGroupUpdateFinishedEventArgs>) {
                const auto& key = args.anglesGroup.groupGuid.GetValue();
                touch(key);
                const auto found = source.anglesGroups->find(key);
                auto before = found == source.anglesGroups->end() ? nullptr : found->second;
                auto after = std::make_shared<const Data::Clips::Groups::AnglesGroup>(args.anglesGroup);
                if (!Same(before, after)) {
                    source.anglesGroups = With(source.anglesGroups, key, after);
                    Emit(AnglesGroupChanged{source.index, key,
                                            before ? Change::Updated : Change::Added, before, after});
                    source.dirty = true;
                }
            } else if constexpr (std::is_same_v<Args, Events::AnglesGroupDeletionFinishedEventArgs>) {
                const auto& key = args.groupGuid.GetValue();
                touch(key);
                const auto found = source.anglesGroups->find(key);
                if (found != source.anglesGroups->end()) {
                    auto before = found->second;
                    source.anglesGroups =
                        With(source.anglesGroups, key,
                             std::shared_ptr<const Data::Clips::Groups::AnglesGroup>());
                    Emit(AnglesGroupChanged{source.index, key, Change::Removed, before, nullptr});
                    source.dirty = true;
                }
            } else if constexpr (std::is_same_v<Args, MassClipChange>) {
                Need(source, kCatalogue, "many clips changed at once");
            }
        },
        notice);
}

// ---------------------------------------------------------------------------------------------
// States, events, snapshots

void MirrorEngine::SetServerState(Source& source, int serverId, SyncState state, bool confirmed) {
    const auto found = source.servers->find(serverId);
    if (found == source.servers->end()) {
        return;
    }
    if (state == SyncState::Live && source.offNetwork.count(serverId) != 0) {
        state = SyncState::Lost;
    }
    const auto before = found->second.state;
    if (before == state && !confirmed) {
        return;
    }
    auto servers = std::make_shared<std::map<int, MirroredServer>>(*source.servers);
    auto& server = (*servers)[serverId];
    server.state = state;
    if (confirmed) {
        server.confirmedAt = std::chrono::system_clock::now();
    }
    source.servers = std::move(servers);
    source.dirty = true;
    if (before != state) {
        Emit(SyncStateChanged{source.index, serverId, before, state});
    }
}

void MirrorEngine::SetAllServers(Source& source, SyncState state, bool confirmed) {
    std::vector<int> ids;
    for (const auto& entry : *source.servers) {
        ids.push_back(entry.first);
    }
    for (int id : ids) {
        SetServerState(source, id, state, confirmed);
    }
}

void MirrorEngine::SetCatalogueState(Source& source, SyncState state, bool confirmed) {
    const auto before = source.catalogueState;
    source.catalogueState = state;
    if (confirmed) {
        source.catalogueConfirmedAt = std::chrono::system_clock::now();
    }
    source.dirty = true;
    if (before != state) {
        Emit(SyncStateChanged{source.index, 0, before, state});
    }
}

void MirrorEngine::Emit(MirrorEvent event) { pendingEvents.push_back(std::move(event)); }

void MirrorEngine::Publish() {
    for (auto& source : sources) {
        if (!source->dirty) {
            continue;
        }
        auto data = std::make_shared<SourceData>();
        data->name = source->name;
        data->catalogueState = source->catalogueState;
        data->catalogueConfirmedAt = source->catalogueConfirmedAt;
        data->servers = source->servers;
        data->players = source->players;
        data->recorders = source->recorders;
        data->clips = source->clips.Freeze();
        data->playlists = source->playlists;
        data->anglesGroups = source->anglesGroups;
        data->trains = source->trains;
        source->dirty = false;
        std::lock_guard<std::mutex> lock(snapshotMutex);
        published[source->index] = std::move(data);
    }
}

void MirrorEngine::Deliver() {
    if (pendingEvents.empty()) {
        return;
    }
    std::vector<MirrorEvent> events;
    events.swap(pendingEvents);
    std::vector<WatcherEntry> current;
    {
        std::lock_guard<std::mutex> lock(watchersMutex);
        current = watchers;
        delivering = true;
    }
    for (const auto& event : events) {
        const bool isState = std::holds_alternative<SyncStateChanged>(event);
        for (const auto& watcher : current) {
            if ((isState || !watcher.statesOnly) && watcher.alive->load()) {
                try {
                    watcher.call(event);
                } catch (const std::exception& failure) {
                    KORVO_LOG_COMPOSED(logger, ILogger::Error, [&] {
                        return std::string("A mirror watcher threw (") + failure.what() + ").";
                    });
                } catch (...) {
                    KORVO_LOG_COMPOSED(logger, ILogger::Error,
                                       [&] { return std::string("A mirror watcher threw."); });
                }
            }
        }
    }
    {
        std::lock_guard<std::mutex> lock(watchersMutex);
        delivering = false;
    }
    deliveryEnded.notify_all();
}

MirrorSnapshot MirrorEngine::Snapshot() const {
    std::vector<SourceSnapshot> taken;
    taken.reserve(published.size());
    std::lock_guard<std::mutex> lock(snapshotMutex);
    for (const auto& data : published) {
        taken.emplace_back(data);
    }
    return MirrorSnapshot(std::move(taken));
}

int MirrorEngine::Watch(std::function<void(const MirrorEvent&)> watcher, bool statesOnly) {
    std::lock_guard<std::mutex> lock(watchersMutex);
    const int id = nextWatcher++;
    watchers.push_back(
        {id, statesOnly, std::move(watcher), std::make_shared<std::atomic<bool>>(true)});
    return id;
}

void MirrorEngine::Unwatch(int id) {
    std::unique_lock<std::mutex> lock(watchersMutex);
    for (auto it = watchers.begin(); it != watchers.end(); ++it) {
        if (it->id == id) {
            it->alive->store(false);
            watchers.erase(it);
            break;
        }
    }
    if (std::this_thread::get_id() != threadId) {
        deliveryEnded.wait(lock, [&] { return !delivering; });
    }
}

MirrorStatistics MirrorEngine::Statistics() const {
    std::lock_guard<std::mutex> lock(statisticsMutex);
    return statistics;
}

Connection& MirrorEngine::ConnectionOf(std::size_t index) { return *sources.at(index)->connection; }

}  // namespace Korvo::Plexis::Tessel::Client::Detail

// The mirror against an in-process simulator reached through unpluggable relays: for each fault,
// the mirror ends equal to a fresh listing, says it cannot be trusted while it knows it is
// behind, and never repeats or reorders a change.

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <map>
#include <mutex>
#include <random>
#include <thread>

#include <Korvo/Plexis/Tessel/Client/Mirror.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetAnglesGroupsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetAnglesGroupsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetChannelsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetServersCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetTrainsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetTrainsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GoIdleCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PlayCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StartCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StepCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StopCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdateClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/Simulator/Simulator.h>

#include "mirror/MirrorData.h"
#include "support/Waiting.h"
#include "support/ZmqPeers.h"

namespace Korvo::Testing {
namespace {

namespace Commands = Plexis::Tessel::HighLevelOperations::Commands;
namespace Sim = Plexis::Tessel::Simulator;
using namespace Plexis::Tessel::Client;
using Plexis::Data::Channels::Guid;

// Generous: the checks run every 300 ms (channels) and 1 s (catalogue), heartbeats fail in 1 s.
constexpr auto kConvergence = std::chrono::seconds(20);

std::string Endpoint(int port) { return "tcp://127.0.0.1:" + std::to_string(port); }

// Every change the mirror reports, checked as it arrives: for each item, each change starts from
// where the previous one ended, so a change told twice or out of order is caught.
class EventChain {
public:
    void operator()(const MirrorEvent& event) {
        std::visit([this](const auto& change) { Check(change); }, event);
    }

    std::vector<std::string> Faults() const {
        std::lock_guard<std::mutex> lock(mutex);
        return faults;
    }
    // States reported for server `serverId` of source 0 (0: the catalogue), in order.
    std::vector<SyncState> States(int serverId) const {
        std::lock_guard<std::mutex> lock(mutex);
        const auto found = states.find(serverId);
        return found == states.end() ? std::vector<SyncState>{} : found->second;
    }
    void ForgetStates() {
        std::lock_guard<std::mutex> lock(mutex);
        states.clear();
    }

private:
    void Check(const SyncStateChanged& change) {
        std::lock_guard<std::mutex> lock(mutex);
        auto& history = states[change.serverId];
        const auto last = lastState.count(change.serverId) ? lastState[change.serverId]
                                                           : SyncState::Syncing;
        if (change.before != last || change.before == change.after) {
            faults.push_back(std::string("state of server ") + std::to_string(change.serverId) +
                             " went " + ToString(change.before) + " -> " +
                             ToString(change.after) + " after " + ToString(last));
        }
        lastState[change.serverId] = change.after;
        history.push_back(change.after);
    }

    template <class Key, class Item>
    void Check(const ItemChanged<Key, Item>& change) {
        std::lock_guard<std::mutex> lock(mutex);
        if constexpr (std::is_same_v<Item, Plexis::Data::Servers::ServerInfo>) {
            if (change.change == Change::Added) {
                lastState.erase(change.key);  // a server listed anew starts syncing
            }
        }
        auto& last = std::get<std::shared_ptr<const Item>>(
            items[typeid(Item).name() + KeyText(change.key)]);
        const bool continues = (!last && !change.before) ||
                               (last && change.before && *last == *change.before);
        const bool shaped = (change.change == Change::Added) == !change.before &&
                            (change.change == Change::Removed) == !change.after;
        if (!continues || !shaped) {
            faults.push_back(std::string(typeid(Item).name()) + " " + KeyText(change.key) +
                             ": a change that does not follow the previous one");
        }
        last = change.after;
    }

    static std::string KeyText(int key) { return std::to_string(key); }
    static std::string KeyText(const Guid& key) { return key.ToString(); }
    static std::string KeyText(const std::string& key) { return key; }

    using AnyItem = std::variant<std::shared_ptr<const Plexis::Data::Servers::ServerInfo>,
                                 std::shared_ptr<const Plexis::Data::Channels::PlayerState>,
                                 std::shared_ptr<const MirroredRecorder>,
                                 std::shared_ptr<const Plexis::Data::Clips::Clip>,
                                 std::shared_ptr<const Plexis::Data::Sequences::Playlist>,
                                 std::shared_ptr<const Plexis::Data::Clips::Groups::AnglesGroup>,
                                 std::shared_ptr<const Plexis::Data::Clips::Train>>;
    mutable std::mutex mutex;
    std::map<std::string, AnyItem> items;
    std::map<int, SyncState> lastState;
    std::map<int, std::vector<SyncState>> states;
    std::vector<std::string> faults;
};

template <class Reply, class Params>
std::shared_ptr<const Reply> List(Connection& connection, Params params = {}) {
    auto operation = connection.Send(std::move(params));
    if (operation.Wait() != Outcome::Replied || !operation.template Get<Reply>()) {
        return nullptr;
    }
    return std::make_shared<Reply>(*operation.template Get<Reply>());
}

// What differs between the mirror's source 0 and what the server lists now; empty when nothing.
std::string Compare(const SourceSnapshot& mirrored, Connection& server) {
    using Plexis::Tessel::Client::Detail::Steady;
    const auto servers = List<Commands::GetServersCommandReply>(server, Commands::GetServersCommandParams{});
    const auto channels = List<Commands::GetChannelsCommandReply>(server, Commands::GetChannelsCommandParams{});
    const auto clips = List<Commands::GetClipsCommandReply>(server, Commands::GetClipsCommandParams{});
    const auto playlists = List<Commands::GetPlaylistsCommandReply>(server, Commands::GetPlaylistsCommandParams{});
    const auto groups = List<Commands::GetAnglesGroupsCommandReply>(server, Commands::GetAnglesGroupsCommandParams{});
    const auto trains = List<Commands::GetTrainsCommandReply>(server, Commands::GetTrainsCommandParams{});
    if (!servers || !channels || !clips || !playlists || !groups || !trains) {
        return "a listing failed";
    }
    if (servers->servers.size() != mirrored.Servers().size()) {
        return "server count";
    }
    for (const auto& info : servers->servers) {
        const auto found = mirrored.Servers().find(info.serverId);
        if (found == mirrored.Servers().end() || !(found->second.info == info)) {
            return "server " + std::to_string(info.serverId);
        }
    }
    if (channels->playerStates.size() != mirrored.Players().size() ||
        channels->recorderStates.size() != mirrored.Recorders().size()) {
        return "channel count";
    }
    for (const auto& [id, state] : channels->playerStates) {
        const auto found = mirrored.Players().find(id);
        if (found == mirrored.Players().end() || !(Steady(*found->second) == Steady(state))) {
            return "player " + id.ToString();
        }
    }
    for (const auto& [id, state] : channels->recorderStates) {
        const auto found = mirrored.Recorders().find(id);
        if (found == mirrored.Recorders().end() ||
            !(Steady(found->second->state) == Steady(state))) {
            return "recorder " + id.ToString();
        }
    }
    if (clips->clips.size() != mirrored.ClipCount()) {
        return "clip count";
    }
    for (const auto& clip : clips->clips) {
        const auto found = mirrored.FindClip(clip.umId);
        if (!found || !(*found == clip)) {
            return "clip " + clip.umId;
        }
    }
    if (playlists->playlists.size() != mirrored.Playlists().size() ||
        groups->anglesGroups.size() != mirrored.AnglesGroups().size() ||
        trains->trains.size() != mirrored.Trains().size()) {
        return "playlist, group or train count";
    }
    for (const auto& group : groups->anglesGroups) {
        const auto found = mirrored.AnglesGroups().find(group.groupGuid.GetValue());
        if (found == mirrored.AnglesGroups().end() || !(*found->second == group)) {
            return "angles group";
        }
    }
    for (const auto& train : trains->trains) {
        const auto found = mirrored.Trains().find(train.clip.umId);
        if (found == mirrored.Trains().end() || !(Steady(*found->second) == Steady(train))) {
            return "train";
        }
    }
    return {};
}

bool AllLive(const SourceSnapshot& source) {
    if (source.CatalogueState() != SyncState::Live || source.Servers().empty()) {
        return false;
    }
    for (const auto& [id, server] : source.Servers()) {
        if (server.state != SyncState::Live) {
            return false;
        }
    }
    return true;
}

Sim::SimulatorOptions SimulatorSetup() {
    Sim::SimulatorOptions options;
    options.servers = 2;
    options.playersPerServer = 2;
    options.recordersPerServer = 1;
    options.clips = 40;
    options.partSize = 7;  // the clip listing comes in parts
    return options;
}

// A simulator, relays the mirror reaches it through, a mirror, and a direct connection that
// drives the server and lists it for comparison.
class MirrorFixture : public ::testing::Test {
public:
    void SetUp() override {
        simulator = std::make_unique<Sim::Simulator>(SimulatorSetup());
        commandRelay = std::make_unique<TcpRelay>(PortOf(simulator->CommandEndpoint()));
        noticeRelay = std::make_unique<TcpRelay>(PortOf(simulator->NotificationEndpoint()));

        ConnectionOptions direct;
        direct.name = "driver";
        direct.commandEndPoint = simulator->CommandEndpoint();
        driver = std::make_unique<Connection>(direct);

        MirrorOptions options;
        ConnectionOptions source;
        source.name = "mirrored";
        source.commandEndPoint = Endpoint(commandRelay->Port());
        source.notificationEndPoints = {Endpoint(noticeRelay->Port())};
        source.transport.heartbeatInterval = std::chrono::milliseconds(200);
        source.transport.heartbeatTimeout = std::chrono::milliseconds(1000);
        source.timeLimit = std::chrono::seconds(5);
        // Small enough that a held notification thread makes the subscription drop.
        source.transport.notificationQueueBytes = 64 * 1024;
        options.sources = {source};
        options.channelCheckPeriod = std::chrono::milliseconds(300);
        options.catalogueCheckPeriod = std::chrono::milliseconds(1000);
        // Longer than the convergence bound: a listing whose reply was lost must be noticed,
        // not waited out.
        options.listingTimeLimit = std::chrono::seconds(60);
        mirror = std::make_unique<Mirror>(options);
        mirror->Watch([this](const MirrorEvent& event) { chain(event); });
        ASSERT_TRUE(Converged()) << lastDifference;
    }

    void TearDown() override {
        EXPECT_TRUE(chain.Faults().empty()) << chain.Faults().front();
        mirror.reset();
    }

    // The mirror is live and equal to a fresh listing, within the bound.
    bool Converged() {
        return Eventually(
            [&] {
                const auto snapshot = mirror->Snapshot();
                if (!AllLive(snapshot.Source(0))) {
                    lastDifference = "not live";
                    return false;
                }
                lastDifference = Compare(snapshot.Source(0), *driver);
                return lastDifference.empty();
            },
            kConvergence);
    }

    // Changes a few things on the server through the direct connection.
    void Stir(int round) {
        const auto snapshot = mirror->Snapshot();
        std::vector<std::string> clips;
        snapshot.Source(0).ForEachClip([&](const auto& clip) { clips.push_back(clip->umId); });
        const Guid player = Guid::PlayerOf(1 + round % 2, static_cast<unsigned>(round % 2));
        if (round % 3 == 2) {
            Commands::GoIdleCommandParams idle;
            idle.players = {player};
            driver->Send(idle).Wait();
        } else {
            Commands::LoadClipsCommandParams load;
            load.playersParameters[player].clip =
                Plexis::Data::Guid(clips.at(static_cast<std::size_t>(round) % clips.size()));
            driver->Send(load).Wait();
        }
        Commands::UpdateClipsCommandParams update;
        Commands::UpdateClipParams change;
        change.oldClip = *snapshot.Source(0).FindClip(clips.at(static_cast<std::size_t>(round * 7) % clips.size()));
        change.newClip = change.oldClip;
        change.newClip.name = Plexis::Data::Clips::AsciiOrUtf16String::Ascii("round " + std::to_string(round));
        update.clips.push_back(change);
        driver->Send(update).Wait();
    }

    bool SawDistrust(int serverId) const {
        for (const auto state : chain.States(serverId)) {
            if (state == SyncState::Stale || state == SyncState::Lost) {
                return true;
            }
        }
        return false;
    }

    std::unique_ptr<Sim::Simulator> simulator;
    std::unique_ptr<TcpRelay> commandRelay, noticeRelay;
    std::unique_ptr<Connection> driver;
    EventChain chain;
    std::unique_ptr<Mirror> mirror;
    std::string lastDifference;
};

struct FaultCase {
    const char* name;
    // Injects the fault and changes things meanwhile; whatever it leaves in place is cleared by
    // `clear`.
    std::function<void(MirrorFixture&)> inject;
    std::function<void(MirrorFixture&)> clear;
    // Whether the mirror can know it is behind, and so must have said so.
    bool distrustShown;
};

class MirrorFaults : public MirrorFixture, public ::testing::WithParamInterface<FaultCase> {};

TEST_P(MirrorFaults, ConvergesToAFreshListingAndSaysWhenItIsBehind) {
    chain.ForgetStates();
    GetParam().inject(*this);
    if (GetParam().clear) {
        GetParam().clear(*this);
    }
    EXPECT_TRUE(Converged()) << lastDifference;
    if (GetParam().distrustShown) {
        EXPECT_TRUE(SawDistrust(1));
    }
}

Sim::Faults NoticeFaults(double drop, double delay) {
    Sim::Faults faults;
    faults.notificationDropFraction = drop;
    faults.notificationDelayFraction = delay;
    faults.notificationDelay = std::chrono::milliseconds(delay > 0 ? 700 : 0);
    return faults;
}

const FaultCase kFaults[] = {
    {"DroppedNotifications",
     [](MirrorFixture& f) {
         f.simulator->SetFaults(NoticeFaults(1, 0));
         for (int round = 0; round < 4; ++round) {
             f.Stir(round);
         }
     },
     [](MirrorFixture& f) { f.simulator->SetFaults({}); }, false},
    {"DelayedNotifications",
     [](MirrorFixture& f) {
         f.simulator->SetFaults(NoticeFaults(0, 0.5));
         for (int round = 0; round < 6; ++round) {
             f.Stir(round);
         }
     },
     [](MirrorFixture& f) { f.simulator->SetFaults({}); }, false},
    {"SilentChange",
     [](MirrorFixture& f) {
         ASSERT_TRUE(f.simulator->ChangeChannelUnannounced("player:1:0"));
         ASSERT_TRUE(f.simulator->ChangeChannelUnannounced("recorder:2:2"));
         std::string umId;
         f.mirror->Snapshot().Source(0).ForEachClip([&](const auto& clip) { umId = clip->umId; });
         ASSERT_TRUE(f.simulator->ChangeClipUnannounced(umId, "renamed at the panel"));
     },
     nullptr, false},
    {"Restart",
     [](MirrorFixture& f) {
         f.simulator->ChangeChannelUnannounced("player:2:1");
         f.simulator->Restart();
     },
     nullptr, true},
    {"NetworkLossAndReturn",
     [](MirrorFixture& f) {
         f.commandRelay->Unplug();
         f.noticeRelay->Unplug();
         ASSERT_TRUE(Eventually([&] {
             return f.mirror->Snapshot().Source(0).Servers().at(1).state == SyncState::Lost;
         }));
         for (int round = 0; round < 3; ++round) {
             f.Stir(round);
         }
     },
     [](MirrorFixture& f) {
         f.commandRelay->Replug();
         f.noticeRelay->Replug();
     },
     true},
    {"ServerOffNetworkAndBack",
     [](MirrorFixture& f) {
         ASSERT_TRUE(f.simulator->DropOffNetwork(1));
         ASSERT_TRUE(Eventually([&] {
             return f.mirror->Snapshot().Source(0).Servers().at(1).state == SyncState::Lost;
         }));
         f.simulator->ChangeChannelUnannounced("recorder:1:2");
     },
     [](MirrorFixture& f) { ASSERT_TRUE(f.simulator->ReturnToNetwork(1)); }, true},
    {"SubscriptionOverflow",
     [](MirrorFixture& f) {
         // Holding the notification thread fills the subscription's queue until it drops.
         auto* notifications = f.mirror->ConnectionOf(0).Notifications();
         auto held = notifications->LockHandlers();
         const auto dropped = notifications->GetSubscription().GetDroppedCount();
         for (int round = 0;
              round < 200 && notifications->GetSubscription().GetDroppedCount() == dropped;
              ++round) {
             f.Stir(round);
         }
         ASSERT_GT(notifications->GetSubscription().GetDroppedCount(), dropped);
     },
     nullptr, true},
};

INSTANTIATE_TEST_SUITE_P(Faults, MirrorFaults, ::testing::ValuesIn(kFaults),
                         [](const auto& info) { return std::string(info.param.name); });

// Snapshots share what did not change; what they hold never changes under a reader.
TEST_F(MirrorFixture, ASnapshotStaysAsTakenWhileTheMirrorChanges) {
    const auto taken = mirror->Snapshot();
    std::map<std::string, std::string> names;
    taken.Source(0).ForEachClip([&](const auto& clip) { names[clip->umId] = clip->name.data; });
    const auto players = taken.Source(0).Players();
    Stir(0);
    Stir(1);
    ASSERT_TRUE(Converged()) << lastDifference;
    std::size_t renamed = 0;
    mirror->Snapshot().Source(0).ForEachClip(
        [&](const auto& clip) { renamed += names.at(clip->umId) != clip->name.data ? 1 : 0; });
    EXPECT_EQ(renamed, 2u);
    taken.Source(0).ForEachClip(
        [&](const auto& clip) { EXPECT_EQ(names.at(clip->umId), clip->name.data); });
    EXPECT_EQ(taken.Source(0).Players(), players);
}

// What a command whose outcome was lost did, told from the resynced state; nothing is sent.
TEST_F(MirrorFixture, SettlesCommandsFromTheResyncedState) {
    const Guid player = Guid::PlayerOf(1, 0);
    const Guid recorder = Guid::RecorderOf(1, 2);
    std::string clip;
    mirror->Snapshot().Source(0).ForEachClip([&](const auto& found) { clip = found->umId; });

    Commands::LoadClipsCommandParams load;
    load.playersParameters[player].clip = Plexis::Data::Guid(clip);
    Commands::PlayCommandParams play;
    play.players = {player};
    play.speedNum = 2;
    Commands::StartCommandParams start;
    start.recorders = {recorder};
    Commands::StopCommandParams stop;
    stop.recorders = {recorder};
    Commands::StepCommandParams step;
    step.players = {player};

    ASSERT_EQ(driver->Send(load).Wait(), Outcome::Replied);
    ASSERT_EQ(driver->Send(play).Wait(), Outcome::Replied);
    ASSERT_EQ(driver->Send(start).Wait(), Outcome::Replied);
    ASSERT_TRUE(Converged()) << lastDifference;

    using Verdict = Settlement::Verdict;
    const std::vector<std::pair<const Commands::CommandParams*, Verdict>> cases = {
        {&load, Verdict::Visible}, {&play, Verdict::Visible}, {&start, Verdict::Visible},
        {&stop, Verdict::NotVisible}, {&step, Verdict::Unknown}};
    for (const auto& [sent, verdict] : cases) {
        const auto settlement = mirror->Settle(*sent);
        EXPECT_EQ(settlement.verdict, verdict) << typeid(*sent).name() << ": " << settlement.detail;
    }
    EXPECT_TRUE(mirror->Settle(load).players.at(player));

    // While the server is out of reach nothing is concluded.
    commandRelay->Unplug();
    noticeRelay->Unplug();
    ASSERT_TRUE(Eventually([&] { return mirror->Settle(load).verdict == Verdict::NotYet; }));
    commandRelay->Replug();
    noticeRelay->Replug();
    ASSERT_TRUE(Converged()) << lastDifference;
}

// Commands from several threads and faults drawn at random; the mirror ends equal to a fresh
// listing. KORVO_SOAK_SECONDS sets the length (scripts/soak.sh runs it long).
TEST_F(MirrorFixture, RandomisedSoakEndsEqualToAFreshListing) {
    const char* configured = std::getenv("KORVO_SOAK_SECONDS");
    const auto length = std::chrono::seconds(configured ? std::atoi(configured) : 3);
    const auto end = std::chrono::steady_clock::now() + length;
    std::atomic<bool> failed{false};
    std::vector<std::thread> stirrers;
    for (int thread = 0; thread < 3; ++thread) {
        stirrers.emplace_back([&, thread] {
            for (int round = thread; std::chrono::steady_clock::now() < end; round += 3) {
                try {
                    Stir(round);
                } catch (const std::exception&) {
                    failed = true;
                    return;
                }
            }
        });
    }
    std::mt19937 random(7);
    bool unplugged = false;
    while (std::chrono::steady_clock::now() < end) {
        switch (random() % 6) {
            case 0:
                simulator->SetFaults(NoticeFaults(0.2, 0.2));
                break;
            case 1:
                simulator->SetFaults({});
                break;
            case 2:
                simulator->ChangeChannelUnannounced("player:2:0");
                break;
            case 3:
                simulator->Restart();
                break;
            case 4:
                unplugged ? commandRelay->Replug() : commandRelay->Unplug();
                unplugged ? noticeRelay->Replug() : noticeRelay->Unplug();
                unplugged = !unplugged;
                break;
            default:
                mirror->Snapshot();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(150 + random() % 300));
    }
    for (auto& stirrer : stirrers) {
        stirrer.join();
    }
    simulator->SetFaults({});
    commandRelay->Replug();
    noticeRelay->Replug();
    EXPECT_FALSE(failed.load());
    const auto cleared = std::chrono::steady_clock::now();
    EXPECT_TRUE(Converged()) << lastDifference;
    const auto statistics = mirror->Statistics();
    std::uint64_t differences = 0;
    for (const auto count : statistics.differences) {
        differences += count;
    }
    std::cout << "soak: " << length.count() << " s, converged "
              << std::chrono::duration<double>(std::chrono::steady_clock::now() - cleared).count()
              << " s after the faults cleared; notifications " << statistics.notificationsApplied
              << ", dropped " << statistics.notificationsDropped << ", resyncs "
              << statistics.resyncs << ", checks " << statistics.verifications
              << ", differences found " << differences << '\n';
}

}  // namespace
}  // namespace Korvo::Testing

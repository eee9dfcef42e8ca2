#pragma once

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <unordered_set>
#include <variant>
#include <vector>

#include <Korvo/Plexis/Notification/AnglesGroupCreationFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/AnglesGroupDeletionFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/AnglesGroupUpdateFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipCreationFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipDeletionFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipMoveFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipUpdateFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/DisconnectedFromNetworkEventArgs.h>
#include <Korvo/Plexis/Notification/PlayerStateChangedEventArgs.h>
#include <Korvo/Plexis/Notification/RecorderStateChangedEventArgs.h>
#include <Korvo/Plexis/Notification/RecordingRangesChangedEventArgs.h>
#include <Korvo/Plexis/Notification/ServerAddedEventArgs.h>
#include <Korvo/Plexis/Notification/ServerRemovedEventArgs.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetChannelsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetServersCommandReply.h>
#include <Korvo/Plexis/Tessel/Logging/ILogger.h>
#include <Korvo/Plexis/Tessel/Logging/RateLimit.h>

#include "mirror/MirrorData.h"

namespace Korvo::Plexis::Tessel::Client::Detail {

namespace Events = Plexis::Notification;

// A notification as the mirror keeps it: a copy of its arguments, or a note that the clips
// changed in bulk (the mass notifications say how many, not which).
struct MassClipChange {};
using Notice = std::variant<Events::PlayerStateChangedEventArgs, Events::RecorderStateChangedEventArgs,
                            Events::RecordingRangesChangedEventArgs, Events::ServerAddedEventArgs,
                            Events::ServerRemovedEventArgs, Events::DisconnectedFromNetworkEventArgs,
                            Events::ClipCreationFinishedEventArgs, Events::ClipUpdateFinishedEventArgs,
                            Events::ClipMoveFinishedEventArgs, Events::ClipDeletionFinishedEventArgs,
                            Events::AnglesGroupCreationFinishedEventArgs,
                            Events::AnglesGroupUpdateFinishedEventArgs,
                            Events::AnglesGroupDeletionFinishedEventArgs, MassClipChange>;

// The two parts of a source that are listed separately.
enum Part : int { kChannels = 0, kCatalogue = 1 };

class MirrorEngine {
public:
    explicit MirrorEngine(MirrorOptions options);
    ~MirrorEngine();

    void Stop();

    MirrorSnapshot Snapshot() const;
    int Watch(std::function<void(const MirrorEvent&)> watcher, bool statesOnly);
    void Unwatch(int watcher);
    MirrorStatistics Statistics() const;
    Connection& ConnectionOf(std::size_t source);
    void Resync(std::size_t source);

private:
    using Clock = std::chrono::steady_clock;

    struct Held {
        Notice notice;
        std::size_t bytes;
    };

    // One listing of a part of a source: its state and the notifications held meanwhile.
    struct Job {
        bool busy = false;
        bool needed = true;     // a listing is wanted (start-up, or something was missed)
        bool verifying = false; // the running listing checks a part believed live
        bool followUp = false;  // the running listing re-reads what notifications touched
        std::uint64_t generation = 0;
        Clock::time_point nextCheck;
        Clock::time_point retryAt;
        std::vector<Held> held;
        std::size_t heldBytes = 0;
        std::array<std::uint64_t, kDifferenceKinds> found{};  // differences of the running check
    };

    struct Source {
        std::size_t index = 0;
        std::string name;
        std::unique_ptr<Connection> connection;
        std::atomic<bool> overflowed{false};  // the inbox dropped one of its notifications
        // Times a link was reported anything but connected: a restart can take a link down and
        // up again between two looks at its state, losing the replies of listings under way.
        std::atomic<std::uint64_t> linkDrops{0};
        std::uint64_t linkDropsSeen = 0;
        int commandWatcher = 0;
        std::uint64_t droppedSeen = 0;
        bool linksUp = false;

        // The content as the mirror thread edits it; published as a `SourceData`.
        SyncState catalogueState = SyncState::Syncing;
        std::chrono::system_clock::time_point catalogueConfirmedAt;
        std::shared_ptr<const std::map<int, MirroredServer>> servers;
        std::shared_ptr<const SharedMap<Data::Channels::Guid, Data::Channels::PlayerState>> players;
        std::shared_ptr<const SharedMap<Data::Channels::Guid, MirroredRecorder>> recorders;
        ClipEditor clips{ClipTable::Empty()};
        std::shared_ptr<const SharedMap<std::string, Data::Sequences::Playlist>> playlists;
        std::shared_ptr<const SharedMap<std::string, Data::Clips::Groups::AnglesGroup>> anglesGroups;
        std::shared_ptr<const SharedMap<std::string, Data::Clips::Train>> trains;
        std::set<int> offNetwork;  // servers that left the network and have not returned
        bool dirty = true;

        Job jobs[2];
        std::vector<Data::Servers::ServerInfo> listedServers;  // between the two channel calls
        std::unordered_set<std::string> seenClips;            // during a clip listing
    };

    struct Task {
        std::function<void()> run;
        std::size_t bytes = 0;  // of a notification, counted against the inbox bound
    };

    struct WatcherEntry {
        int id;
        bool statesOnly;
        std::function<void(const MirrorEvent&)> call;
        std::shared_ptr<std::atomic<bool>> alive;
    };

    void Run();
    void Post(Task task);
    void PostNotice(std::size_t source, Notice notice, std::size_t bytes);
    void Attach(Source& source);

    void Tick(Clock::time_point now);
    void CheckLinks(Source& source, Clock::time_point now);
    void StartJobs(Source& source, Clock::time_point now);
    void StartChannels(Source& source);
    void StartCatalogue(Source& source);
    void Need(Source& source, Part part, const char* why);
    void JobFailed(Source& source, Part part, const std::string& why);
    void Abandon(Source& source, Part part);
    void FinishJob(Source& source, Part part);
    bool Current(const Source& source, Part part, std::uint64_t generation) const;

    void OnNotice(Source& source, Notice notice, std::size_t bytes);
    void Apply(Source& source, const Notice& notice, std::set<std::string>* touched);
    void ApplyServers(Source& source, const std::vector<Data::Servers::ServerInfo>& listed,
                      bool verifying);
    void ApplyChannels(Source& source,
                       const HighLevelOperations::Commands::GetChannelsCommandReply& reply,
                       bool verifying);
    void ApplyClipPart(Source& source, const std::vector<Data::Clips::Clip>& clips, bool verifying);
    void SweepClips(Source& source, bool verifying);
    void PutClip(Source& source, const Data::Clips::Clip& clip, bool verifying);
    void EraseClip(Source& source, const std::string& umId, bool verifying);
    void Found(Source& source, Difference kind, bool verifying);
    // Replaces `current` with a catalogue listing's items, keyed by `keyOf`: each item added,
    // removed or changed (by `same`) is a difference when verifying and a change event; with
    // `shareUnchanged`, an unchanged item keeps the object earlier snapshots share.
    template <class Event, class Item, class KeyOf, class SameFn>
    void Relist(Source& source, Difference kind,
                std::shared_ptr<const SharedMap<std::string, Item>>& current,
                std::vector<Item>& listed, KeyOf keyOf, SameFn same, bool shareUnchanged);
    void ReportDifferences(Source& source, Part part);

    void SetServerState(Source& source, int serverId, SyncState state, bool confirmed);
    void SetAllServers(Source& source, SyncState state, bool confirmed);
    void SetCatalogueState(Source& source, SyncState state, bool confirmed);
    void Emit(MirrorEvent event);
    void Publish();
    void Deliver();

    MirrorOptions options;
    std::shared_ptr<Logging::ILogger> logger;
    Logging::RateLimit differenceLog, resyncLog, dropLog;
    std::vector<std::unique_ptr<Source>> sources;

    mutable std::mutex inboxMutex;
    std::condition_variable inboxChanged;
    std::deque<Task> inbox;
    std::size_t inboxBytes = 0;
    bool stopping = false;

    mutable std::mutex snapshotMutex;
    std::vector<std::shared_ptr<const SourceData>> published;

    mutable std::mutex statisticsMutex;
    MirrorStatistics statistics;

    std::mutex watchersMutex;
    std::condition_variable deliveryEnded;
    std::vector<WatcherEntry> watchers;
    int nextWatcher = 1;
    bool delivering = false;
    std::vector<MirrorEvent> pendingEvents;

    std::thread thread;
    std::thread::id threadId;
};

}  // namespace Korvo::Plexis::Tessel::Client::Detail

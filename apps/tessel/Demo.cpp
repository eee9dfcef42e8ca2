// `tessel demo`: a simulator in this process and a guided walk through the library against it.

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <mutex>

#include <Korvo/Plexis/Tessel/Client/NotificationClient.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CreatePlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/DeleteClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/DeletePlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetChannelsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetMultiviewerDataCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetServersCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GoIdleCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PlayCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PlaylistCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SetMultiviewerDataCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StartCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StepCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StopCommandParams.h>
#include <Korvo/Plexis/Tessel/Simulator/Simulator.h>

#include "Errors.h"
#include "Notifications.h"
#include "Text.h"
#include "Tool.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Commands = HighLevelOperations::Commands;
using Data::Channels::Guid;

namespace {

constexpr std::chrono::seconds kPatience{10};

// The notifications received so far; each step shows those that arrived since the previous one.
class Feed {
public:
    void Add(const NotificationLine& line) {
        std::lock_guard<std::mutex> lock(mutex);
        lines.push_back(line);
        if (!line.createdClip.empty()) {
            createdClip = line.createdClip;
        }
        arrived.notify_all();
    }

    /// Waits until `count` notifications of `type` have arrived since the last `Take`.
    bool WaitFor(const std::string& type, std::size_t count) {
        std::unique_lock<std::mutex> lock(mutex);
        return arrived.wait_for(lock, kPatience, [&] {
            std::size_t seen = 0;
            for (std::size_t index = taken; index < lines.size(); ++index) {
                seen += lines[index].type == type ? 1 : 0;
            }
            return seen >= count;
        });
    }

    /// The notifications that arrived since the last call.
    std::vector<NotificationLine> Take() {
        std::lock_guard<std::mutex> lock(mutex);
        std::vector<NotificationLine> fresh(lines.begin() + static_cast<std::ptrdiff_t>(taken),
                                            lines.end());
        taken = lines.size();
        return fresh;
    }

    std::string CreatedClip() {
        std::lock_guard<std::mutex> lock(mutex);
        return createdClip;
    }

    std::size_t Total() {
        std::lock_guard<std::mutex> lock(mutex);
        return lines.size();
    }

private:
    std::mutex mutex;
    std::condition_variable arrived;
    std::deque<NotificationLine> lines;
    std::size_t taken = 0;
    std::string createdClip;
};

// The narrated steps: a heading, the command and its reply, then the notifications it caused.
class Tour {
public:
    Tour(std::ostream& out, std::ostream& err, Session& session, Feed& feed)
        : out(out), err(err), session(session), feed(feed) {}

    /// Sends `command`, shows its reply, and waits for `count` notifications of type `expect`
    /// (none when null) before showing what arrived. Throws `CliError` when a step fails.
    Replies Step(const std::string& title, const std::string& command,
                 const Commands::CommandParams& params, const char* expect = nullptr,
                 std::size_t count = 1, std::function<void(Commands::CommandReply&)> filter = {}) {
        out << '\n' << ++number << ". " << title << "  [" << command << "]\n";
        OutputOptions output;
        output.filter = std::move(filter);
        output.keep = true;  // the demo's own simulator: small replies
        Replies replies = Execute(session, command, params, output, out, err);
        if (expect != nullptr) {
            Expect(expect, count, command);
        }
        Show();
        return replies;
    }

    /// Waits for notifications without sending anything.
    void Wait(const std::string& title, const char* expect, std::size_t count) {
        out << '\n' << ++number << ". " << title << '\n';
        Expect(expect, count, "the recording");
        Show();
    }

    int Steps() const noexcept { return number; }

private:
    void Expect(const char* type, std::size_t count, const std::string& cause) {
        if (!feed.WaitFor(type, count)) {
            Show();
            throw CliError(ExitCode::TimedOut, "demo: no " + std::string(type) + " after " + cause +
                                                   " within " + SecondsText(kPatience));
        }
    }

    void Show() {
        for (const auto& line : feed.Take()) {
            out << "   notification  " << line.type << ": " << line.summary << '\n';
        }
        out.flush();
    }

    std::ostream& out;
    std::ostream& err;
    Session& session;
    Feed& feed;
    int number = 0;
};

const Commands::GetClipsCommandReply& Listing(const Replies& replies) {
    return dynamic_cast<const Commands::GetClipsCommandReply&>(*replies.back());
}

Data::Sequences::AudioVideoElement ElementOf(const Data::Clips::Clip& clip, std::int32_t position) {
    Data::Sequences::AudioVideoElement item;
    item.element.id = position + 1;
    item.element.position = position;
    item.element.umId = clip.umId;
    item.element.speed = {1, 1};
    item.videoFieldIn = item.audioFieldIn = clip.inBoundField;
    item.videoFieldOut = item.audioFieldOut = clip.outBoundField;
    return item;
}

}  // namespace

int Demo(std::ostream& out, std::ostream& err) {
    const auto started = std::chrono::steady_clock::now();
    const Guid player = Guid::PlayerOf(1, 0);
    const Guid recorder = Guid::RecorderOf(1, 4);  // after the four players of server 1

    Simulator::Simulator simulator(Simulator::SimulatorOptions{});
    out << "Started a replay-server simulator in this process:\n"
        << "  commands on " << simulator.CommandEndpoint() << ", notifications on "
        << simulator.NotificationEndpoint() << '\n';

    Feed feed;
    auto notifications = std::make_unique<Client::NotificationClient>(
        std::vector<Common::Messaging::EndPoint>{
            Common::Messaging::EndPoint(simulator.NotificationEndpoint())},
        std::vector<std::string>{});
    {
        auto lock = notifications->LockHandlers();
        AttachDescriber(*notifications, [&feed](const NotificationLine& line) { feed.Add(line); });
    }
    if (!simulator.WaitForSubscriber("", kPatience)) {
        throw CliError(ExitCode::NoServer, "demo: the notification link did not come up within " +
                                               SecondsText(kPatience));
    }
    out << "Subscribed to every notification; connecting the command clients.\n";

    ConnectionSettings settings;
    settings.commandEndpoint = simulator.CommandEndpoint();
    settings.notificationEndpoint = simulator.NotificationEndpoint();
    settings.timeout = kPatience;
    Session session(settings);
    Tour tour(out, err, session, feed);

    tour.Step("The servers", "GetServersCommand", NewParams<Commands::GetServersCommandParams>());
    tour.Step("Their players and recorders", "GetChannelsCommand",
              NewParams<Commands::GetChannelsCommandParams>());

    auto start = NewParams<Commands::StartCommandParams>();
    start.recorders = {recorder};
    tour.Step("Start recording on " + recorder.ToString(), "StartRecordingCommand", start,
              "RecorderStateChanged");
    // The ranges are published about once a second while recording.
    tour.Wait("Let it record for about two seconds", "RecordingRangesChanged", 2);

    auto stop = NewParams<Commands::StopCommandParams>();
    stop.recorders = {recorder};
    tour.Step("Stop recording: the recording becomes a clip", "StopRecordingCommand", stop,
              "ClipCreationFinished");
    const std::string clip = feed.CreatedClip();

    const auto listing =
        tour.Step("List the clips, keeping the new one and two seeded ones", "GetClipsCommand",
                  NewParams<Commands::GetClipsCommandParams>(), nullptr, 1,
                  [&clip](Commands::CommandReply& reply) {
                      auto& clips = dynamic_cast<Commands::GetClipsCommandReply&>(reply).clips;
                      std::vector<Data::Clips::Clip> kept;
                      for (const auto& candidate : clips) {
                          if (Trimmed(candidate.umId) == clip || kept.size() < 2) {
                              kept.push_back(candidate);
                          }
                      }
                      clips = kept;
                  });

    auto load = NewParams<Commands::LoadClipsCommandParams>();
    load.playersParameters[player].clip = Data::Guid(clip);
    tour.Step("Load the new clip on " + player.ToString(), "LoadClipsCommand", load,
              "PlayerStateChanged");

    auto play = NewParams<Commands::PlayCommandParams>();
    play.players = {player};
    // One state when it starts, one when it stops at its out point.
    tour.Step("Play it at normal speed to its end", "PlayCommand", play, "PlayerStateChanged", 2);

    auto step = NewParams<Commands::StepCommandParams>();
    step.players = {player};
    step.fieldCount = -25;
    tour.Step("Pause and step back 25 fields (half a second)", "StepCommand", step,
              "PlayerStateChanged");

    auto multiviewer = NewParams<Commands::SetMultiviewerDataCommandParams>();
    auto& overrides = multiviewer.playersDataOverrides[player];
    overrides.playerGuid = player;
    overrides.message = "Demo replay";
    overrides.isPostRollEnabled = true;
    tour.Step("Show a message for " + player.ToString() + " on the multiviewers",
              "SetMultiviewerDataCommand", multiviewer);
    tour.Step("Read the multiviewer data back", "GetMultiviewerDataCommand",
              NewParams<Commands::GetMultiviewerDataCommandParams>());

    auto create = NewParams<Commands::CreatePlaylistsCommandParams>();
    Data::Sequences::Playlist playlist;
    playlist.sequence.name = Data::Clips::AsciiOrUtf16String::Ascii("Demo playlist");
    playlist.sequence.playRateNumerator = playlist.sequence.playRateDenominator = 1;
    std::vector<Data::Sequences::AudioVideoElement> elements;
    for (const auto& item : Listing(listing).clips) {
        elements.push_back(ElementOf(item, static_cast<std::int32_t>(elements.size())));
        playlist.sequence.durationWithoutEffects += item.outBoundField - item.inBoundField;
    }
    playlist.sequence.durationWithEffects = playlist.sequence.durationWithoutEffects;
    playlist.audioVideoTrack.numberOfElements = static_cast<std::int32_t>(elements.size());
    playlist.audioVideoTrack.elements = elements;
    create.playlists = {playlist};
    const auto created =
        tour.Step("Build a playlist of those clips", "CreatePlaylistsCommand", create);
    const std::string playlistId =
        dynamic_cast<const Commands::PlaylistCommandReply&>(*created.back())
            .results.at(0)
            .playlist.sequence.umId;

    auto readBack = NewParams<Commands::GetPlaylistsCommandParams>();
    readBack.idFilter = Data::Guid(playlistId);
    tour.Step("Read the playlist back", "GetPlaylistsCommand", readBack);

    auto idle = NewParams<Commands::GoIdleCommandParams>();
    idle.players = {player};
    tour.Step("Clean up: unload the player", "GoIdleCommand", idle, "PlayerStateChanged");
    auto deletePlaylist = NewParams<Commands::DeletePlaylistsCommandParams>();
    deletePlaylist.playlists = {Data::Guid(playlistId)};
    tour.Step("Clean up: delete the playlist", "DeletePlaylistsCommand", deletePlaylist);
    auto deleteClip = NewParams<Commands::DeleteClipsCommandParams>();
    deleteClip.clips = {Data::Guid(clip)};
    tour.Step("Clean up: delete the recorded clip", "DeleteClipsCommand", deleteClip,
              "ClipDeletionFinished");

    notifications.reset();
    simulator.Stop();
    const auto statistics = simulator.GetStatistics();
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - started;
    char seconds[32];
    std::snprintf(seconds, sizeof seconds, "%.1f", elapsed.count());
    out << "\nDemo finished in " << seconds << " s: " << tour.Steps() << " steps, "
        << statistics.commandsReceived << " commands, " << feed.Total()
        << " notifications received. The simulator has stopped.\n"
        << "Against a real server: tessel --commands tcp://<host>:5555 channels (see tessel "
           "--help).\n";
    return 0;
}

}  // namespace Korvo::Plexis::Tessel::Cli

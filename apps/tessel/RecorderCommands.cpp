// tessel record start and stop.

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include <Korvo/Plexis/Tessel/Client/NotificationClient.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ChannelCommandReply.h>

#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StartCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StopCommandParams.h>

#include "Errors.h"
#include "Output.h"
#include "Subcommands.h"
#include "Text.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Commands = HighLevelOperations::Commands;
using Data::Channels::Guid;
namespace Messaging = Common::Messaging;

namespace {

struct RecorderOptions {
    std::vector<std::string> recorders;  // start, stop
};

void Recorders(CLI::App* command, std::vector<std::string>& texts) {
    command
        ->add_option("recorders", texts,
                     "Recorders: recorder:<server>:<channel> or <server>:<channel>")
        ->required();
}

// The clips the server announces as made by one command, and whether the subscription is up.
class CreatedClips {
public:
    CreatedClips(const ConnectionSettings& settings, Data::Guid command)
        : command(std::move(command)) {
        const Messaging::EndPoint endpoint = settings.NotificationEndPoint();
        try {
            client = std::make_unique<Client::NotificationClient>(
                std::vector<Messaging::EndPoint>{endpoint},
                std::vector<std::string>{"ClipCommand"});
        } catch (const std::exception& error) {
            throw CliError(ExitCode::Local,
                           "cannot open the link to " + endpoint.Address() + ": " + error.what());
        }
        auto lock = client->LockHandlers();
        client->clipCreationFinishedHandlers.push_back(
            [this](const Notification::ClipCreationFinishedEventArgs& args) {
                if (args.commandGuid != this->command) {
                    return;
                }
                std::lock_guard<std::mutex> lock(mutex);
                clips.push_back({Guid::RecorderOf(args.serverId,
                                                  static_cast<unsigned>(args.channelNumber)),
                                 args.clip});
                changed.notify_all();
            });
        client->GetSubscription().SetConnectionStateHandler(
            [this](const Messaging::EndPoint&, Messaging::ConnectionState state) {
                std::lock_guard<std::mutex> lock(mutex);
                up = up || state == Messaging::ConnectionState::Connected;
                changed.notify_all();
            });
        for (const auto state : client->GetSubscription().GetConnectionStates()) {
            std::lock_guard<std::mutex> lock(mutex);
            up = up || state == Messaging::ConnectionState::Connected;
        }
    }

    ~CreatedClips() { client->GetSubscription().SetConnectionStateHandler({}); }

    /// Whether the subscription came up within `limit`.
    bool WaitUp(std::chrono::milliseconds limit) {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, limit, [this] { return up; });
    }

    /// The clips announced once `count` have come, or when `limit` passes.
    std::vector<std::pair<Guid, Data::Clips::Clip>> Wait(std::size_t count,
                                                         std::chrono::milliseconds limit) {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait_for(lock, limit, [&] { return clips.size() >= count; });
        return clips;
    }

private:
    Data::Guid command;
    std::mutex mutex;
    std::condition_variable changed;
    bool up = false;
    std::vector<std::pair<Guid, Data::Clips::Clip>> clips;
    std::unique_ptr<Client::NotificationClient> client;  // last: stopped before the rest goes
};

// Stops the recorders, shows the reply, then the clip each stopped recorder made.
int StopRecording(Context& context, const Commands::StopCommandParams& params) {
    SignalGuard guard;
    const auto timeout = context.settings.timeout;
    CreatedClips created(context.settings, params.commandGuid);
    // Subscribed before the stop is sent, so that the announcement cannot be missed.
    const bool subscribed = created.WaitUp(timeout);
    std::size_t stopped = 0;  // the recorders whose recording became a clip
    const auto count = [&stopped](Commands::CommandReply& reply) {
        if (const auto* results = dynamic_cast<const Commands::ChannelCommandReply*>(&reply)) {
            for (const auto& result : *results) {
                stopped += result.status.code == 0 ? 1 : 0;
            }
        }
    };
    std::optional<CliError> failure;  // some recorders did not stop: the others' clips first
    try {
        Execute(context.GetSession(), "StopRecordingCommand", params, context.Output(count),
                context.out, context.err);
    } catch (const CliError& error) {
        if (error.GetCode() != ExitCode::Failed) {
            throw;
        }
        failure = error;
    }
    if (stopped == 0 && failure) {
        throw *failure;
    }
    const auto clips = subscribed ? created.Wait(stopped, timeout)
                                  : std::vector<std::pair<Guid, Data::Clips::Clip>>{};
    if (context.json) {
        for (const auto& [recorder, clip] : clips) {
            context.out << nlohmann::ordered_json{{"createdClip",
                                           {{"recorder", recorder.ToString()},
                                            {"name", TextOf(clip.name)},
                                            {"umId", Trimmed(clip.umId)}}}}
                               .dump()
                        << '\n';
        }
    } else if (!clips.empty()) {
        Table table(context.out, {"RECORDER", "CLIP", "UMID"}, "");
        for (const auto& [recorder, clip] : clips) {
            table.AddRow({recorder.ToString(), TextOf(clip.name), Trimmed(clip.umId)});
        }
        table.Finish();
    }
    context.out.flush();
    CheckOutput(context.out);
    if (clips.size() < stopped) {
        context.err << "tessel: " << (stopped - clips.size()) << " of the " << stopped
                    << " clips made were not announced within " << SecondsText(timeout)
                    << (subscribed ? "" : " (the notification link did not come up; check "
                                          "--notifications)")
                    << "; see tessel clips\n"
                    << std::flush;
    }
    if (failure) {
        throw *failure;
    }
    return 0;
}

}  // namespace

void AddRecorderCommands(CLI::App& app, Context& context) {
    const auto options = std::make_shared<RecorderOptions>();
    auto* record = app.add_subcommand("record", "Start or stop recorders");
    record->require_subcommand(1);
    record->footer(Examples({"tessel record start 1:4", "tessel record stop recorder:1:4"}));
    auto* start = Subcommand(*record, "start", "Start recorders recording",
                             {"tessel record start 1:4", "tessel record start 1:4 1:5"});
    Recorders(start, options->recorders);
    On(start, context, [&context, options] {
        auto params = NewParams<Commands::StartCommandParams>();
        params.recorders = ChannelSet(options->recorders, Guid::Recorder);
        return context.Send("StartRecordingCommand", params);
    });
    auto* stop = Subcommand(
        *record, "stop",
        "Stop recorders; each recording becomes a clip, shown with its name and umId once the "
        "server announces it (on the notification endpoint, within --timeout)",
        {"tessel record stop 1:4", "tessel record stop 1:4 1:5 --json"});
    Recorders(stop, options->recorders);
    On(stop, context, [&context, options] {
        auto params = NewParams<Commands::StopCommandParams>();
        params.recorders = ChannelSet(options->recorders, Guid::Recorder);
        return StopRecording(context, params);
    });
}

}  // namespace Korvo::Plexis::Tessel::Cli

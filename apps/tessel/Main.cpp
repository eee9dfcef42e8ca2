// The command line of `tessel`: global options, one subcommand per task, and the mapping of every
// failure to its exit code.

#include <signal.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <random>
#include <set>

#include <CLI/CLI.hpp>

#include <Korvo/Common/Messaging/Exception.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetChannelsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetChannelsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetMultiviewerDataCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetMultiviewerDataCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetServersCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetTrainsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GoIdleCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PingCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PlayCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SetMultiviewerDataCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StartCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StepCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StopCommandParams.h>
#include <Korvo/Plexis/Tessel/Json/CommandParamsJson.h>
#include <Korvo/Plexis/Tessel/Logging/Loggers.h>
#include <Korvo/Plexis/Tessel/Logging/StandardErrorLoggerFactory.h>

#include "Errors.h"
#include "Output.h"
#include "Text.h"
#include "Tool.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Commands = HighLevelOperations::Commands;
using Data::Channels::Guid;

namespace {

// The signal that asked a command to stop, for the wait to notice; 0 while none came. Set by a
// handler that may run on any thread: a lock-free atomic is safe there.
std::atomic<int> receivedSignal{0};
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void NoteSignal(int signal) {
    if (receivedSignal.load() != 0) {
        // A second signal while the first is not yet acted on (a blocked write): end now.
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    }
    receivedSignal.store(signal);
}

// SIGINT and SIGTERM only set `receivedSignal` while a command runs, so that the tool ends
// between two lines of output (never inside one) with 128 + the signal.
class SignalGuard {
public:
    SignalGuard() {
        struct sigaction action {};
        action.sa_handler = NoteSignal;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        sigaction(SIGINT, &action, &previousInterrupt);
        sigaction(SIGTERM, &action, &previousTerminate);
    }
    ~SignalGuard() {
        sigaction(SIGINT, &previousInterrupt, nullptr);
        sigaction(SIGTERM, &previousTerminate, nullptr);
    }
    SignalGuard(const SignalGuard&) = delete;
    SignalGuard& operator=(const SignalGuard&) = delete;

    static int Received() { return receivedSignal.load(); }

private:
    struct sigaction previousInterrupt {};
    struct sigaction previousTerminate {};
};

// What every subcommand shares: the global options and the session, made on first use.
struct Context {
    Context(std::istream& in, std::ostream& out, std::ostream& err) : in(in), out(out), err(err) {}

    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    ConnectionSettings settings;
    double timeoutSeconds = 5;
    std::string logLevel = "error";
    bool json = false;
    std::unique_ptr<Session> session;

    Session& GetSession() {
        if (!session) {
            session = std::make_unique<Session>(settings);
        }
        return *session;
    }

    OutputOptions Output(std::function<void(Commands::CommandReply&)> filter = {}) const {
        OutputOptions options;
        options.json = json;
        options.progress = StandardErrorIsTerminal();
        options.filter = std::move(filter);
        options.interrupted = &SignalGuard::Received;
        return options;
    }

    int Send(const std::string& name, const Commands::CommandParams& params,
             std::function<void(Commands::CommandReply&)> filter = {}) {
        SignalGuard guard;
        Execute(GetSession(), name, params, Output(std::move(filter)), out, err);
        return 0;
    }
};

const std::pair<const char*, Logging::ILogger::Level> kLogLevels[] = {
    {"trace", Logging::ILogger::Trace}, {"debug", Logging::ILogger::Debug},
    {"info", Logging::ILogger::Info},   {"warning", Logging::ILogger::Warning},
    {"error", Logging::ILogger::Error}, {"fatal", Logging::ILogger::Fatal},
};

void SetUpLogging(const std::string& level) {
    for (const auto& [name, value] : kLogLevels) {
        if (level == name) {
            auto& loggers = Logging::Loggers::GetInstance();
            loggers.SetLoggerFactory(std::make_unique<Logging::StandardErrorLoggerFactory>());
            loggers.SetLoggingLevel(value);
        }
    }
}

std::set<Guid> ChannelSet(const std::vector<std::string>& texts, Guid::Type kind) {
    std::set<Guid> channels;
    for (const auto& text : texts) {
        channels.insert(ParseChannel(text, kind));
    }
    return channels;
}

// "N/D" or "N" as a speed fraction.
std::pair<std::int32_t, std::int32_t> ParseSpeed(const std::string& text) {
    const auto slash = text.find('/');
    try {
        std::size_t used = 0;
        const int numerator = std::stoi(text.substr(0, slash), &used);
        if (used != (slash == std::string::npos ? text.size() : slash)) {
            throw std::invalid_argument(text);
        }
        int denominator = 1;
        if (slash != std::string::npos) {
            denominator = std::stoi(text.substr(slash + 1), &used);
            if (used != text.size() - slash - 1 || denominator <= 0) {
                throw std::invalid_argument(text);
            }
        }
        return {numerator, denominator};
    } catch (const std::logic_error&) {
        throw CliError(ExitCode::Usage, "\"" + text +
                                            "\" is not a speed: write N/D (1/1 normal, 1/2 half, "
                                            "-1/1 backwards) or N");
    }
}

bool ContainsFolded(const std::string& text, const std::string& part) {
    return std::search(text.begin(), text.end(), part.begin(), part.end(), [](char a, char b) {
               return std::tolower(static_cast<unsigned char>(a)) ==
                      std::tolower(static_cast<unsigned char>(b));
           }) != text.end();
}

// Which clips `tessel clips` keeps.
struct ClipFilter {
    std::string name;
    std::string keyword;
    std::string umId;
    std::size_t limit = 0;

    bool Keeps(const Data::Clips::Clip& clip) const {
        const bool keywordMatches =
            keyword.empty() ||
            std::any_of(clip.keywords.begin(), clip.keywords.end(),
                        [&](const auto& word) { return ContainsFolded(TextOf(word), keyword); });
        return keywordMatches && (name.empty() || ContainsFolded(TextOf(clip.name), name)) &&
               clip.umId.compare(0, umId.size(), umId) == 0;
    }

    void Apply(Commands::CommandReply& reply) {
        auto* listing = dynamic_cast<Commands::GetClipsCommandReply*>(&reply);
        if (listing == nullptr) {
            return;
        }
        auto& clips = listing->clips;
        clips.erase(std::remove_if(clips.begin(), clips.end(),
                                   [&](const auto& clip) {
                                       const bool keep =
                                           Keeps(clip) && (limit == 0 || kept < limit);
                                       kept += keep ? 1 : 0;
                                       return !keep;
                                   }),
                    clips.end());
    }

private:
    std::size_t kept = 0;  // over every part of the listing
};

// The range of --timeout, in seconds: long enough for any link, short enough that the time in
// milliseconds never overflows.
constexpr double kShortestTimeout = 0.001;
constexpr double kLongestTimeout = 86400;

// A number of seconds from `low` to `high`; refuses nan, infinities and texts that are not
// numbers, naming the range.
CLI::Validator SecondsInRange(double low, double high) {
    char range[64];
    std::snprintf(range, sizeof range, "%g to %g", low, high);
    return CLI::Validator(
        [low, high, range = std::string(range)](std::string& text) -> std::string {
            char* end = nullptr;
            errno = 0;
            const double value = std::strtod(text.c_str(), &end);
            if (end == text.c_str() || *end != '\0' || !std::isfinite(value) || value < low ||
                value > high) {
                return "\"" + text + "\" is not a number of seconds from " + range;
            }
            return "";
        },
        "SECONDS (" + std::string(range) + ")");
}

// A whole number from `low` to `high`; the message names the range.
CLI::Validator WholeInRange(long long low, long long high) {
    const std::string range = std::to_string(low) + " to " + std::to_string(high);
    return CLI::Validator(
        [low, high, range](std::string& text) -> std::string {
            char* end = nullptr;
            errno = 0;
            const long long value = std::strtoll(text.c_str(), &end, 10);
            if (end == text.c_str() || *end != '\0' || errno == ERANGE || value < low ||
                value > high) {
                return "\"" + text + "\" is not a whole number from " + range;
            }
            return "";
        },
        "INTEGER (" + range + ")");
}

constexpr long long kInt32Max = std::numeric_limits<std::int32_t>::max();
constexpr long long kInt32Min = std::numeric_limits<std::int32_t>::min();
constexpr long long kInt64Max = std::numeric_limits<std::int64_t>::max();

// Edit distance of two short words, for suggesting a subcommand.
std::size_t Distance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t above = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] != b[j - 1])});
            diagonal = above;
        }
    }
    return row[b.size()];
}

// The message of a command-line error. A word left over where a subcommand was expected is
// named as an unknown subcommand, with the nearest valid one and the list.
std::string UsageErrorText(CLI::App& app, const CLI::ParseError& error) {
    CLI::App* level = &app;
    while (!level->get_subcommands().empty()) {
        level = level->get_subcommands().front();
    }
    const auto choices = level->get_subcommands({});
    auto extras = level->remaining();
    if (extras.empty()) {
        extras = app.remaining();  // the leftovers of a subcommand fall through to the top
    }
    const bool expectsSubcommand =
        !choices.empty() && !extras.empty() && !extras.front().empty() && extras.front()[0] != '-';
    if (!expectsSubcommand) {
        return error.what();
    }
    const std::string& word = extras.front();
    std::string names;
    std::string nearest;
    std::size_t nearestDistance = 3;  // suggest only what is a typo or two away
    for (const CLI::App* choice : choices) {
        const std::string& name = choice->get_name();
        names += (names.empty() ? "" : ", ") + name;
        const std::size_t distance = Distance(word, name);
        if (distance < nearestDistance || name.rfind(word, 0) == 0) {
            nearestDistance = name.rfind(word, 0) == 0 ? 0 : distance;
            nearest = name;
        }
    }
    const std::string path = level == &app ? std::string("tessel") : "tessel " + level->get_name();
    return "unknown subcommand \"" + word + "\"" +
           (nearest.empty() ? "" : " (did you mean \"" + nearest + "\"?)") + "; " + path +
           " has: " + names;
}

std::string Examples(std::initializer_list<const char*> lines) {
    std::string text = "Examples:";
    for (const char* line : lines) {
        text += std::string("\n  ") + line;
    }
    return text + "\n\nExit codes: see tessel --help.";
}

CLI::App* Subcommand(CLI::App& parent, const char* name, const char* description,
                     std::initializer_list<const char*> examples) {
    CLI::App* command = parent.add_subcommand(name, description);
    command->footer(Examples(examples));
    return command;
}

// The subcommands, each setting `action` when chosen.
class Subcommands {
public:
    Subcommands(CLI::App& app, Context& context, std::function<int()>& action)
        : app(app), context(context), action(action) {}

    void AddAll() {
        AddCall();
        AddListings();
        AddPlayerCommands();
        AddRecordCommands();
        AddMultiviewerCommands();
        AddWatchAndDemo();
    }

private:
    void On(CLI::App* command, std::function<int()> run) {
        command->callback([this, run = std::move(run)] { action = run; });
    }

    CLI::Option* Players(CLI::App* command, std::vector<std::string>& texts) {
        return command
            ->add_option("players", texts,
                         "Players: player:<server>:<channel> or <server>:<channel>")
            ->required();
    }

    void AddCall() {
        auto* call = Subcommand(
            app, "call", "Send any command with JSON parameters; print its reply",
            {"tessel call PingCommand", "tessel call GetClipsCommand --json > clips.jsonl",
             "tessel call PlayCommand '{\"players\": [\"player:1:0\"], \"speedNum\": 1, "
             "\"speedDen\": 2}'",
             "tessel call CreateClipsCommand @new-clips.json",
             "echo '{\"players\": [\"player:1:0\"]}' | tessel call GoIdleCommand -",
             "tessel call --list"});
        call->add_option("command", callName, "Command name, such as PlayCommand (see --list)");
        call->add_option("parameters", callParameters,
                         "JSON object of the command's parameters; @FILE reads a file, - standard "
                         "input (at most 16 MiB); {} when absent (a missing commandGuid is "
                         "generated)");
        call->add_flag("--list", callList, "List the command names");
        On(call, [this] {
            if (callList) {
                for (const auto& name : Json::CommandNames()) {
                    context.out << name << '\n';
                }
                return 0;
            }
            if (callName.empty()) {
                throw CliError(ExitCode::Usage,
                               "call: a command name is required (see tessel call --list)");
            }
            const auto params =
                Json::CommandParamsFromJson(callName, ParametersText(callParameters, context.in));
            return context.Send(callName, *params);
        });
    }

    void AddListings() {
        auto* ping = Subcommand(app, "ping", "Check that the server answers, and how fast",
                                {"tessel ping", "tessel -c tcp://replay-1:5555 ping"});
        On(ping, [this] {
            SignalGuard guard;
            const auto params = NewParams<Commands::PingCommandParams>();
            Session& session = context.GetSession();
            session.Connect("PingCommand", params);  // so that the time is the round trip only
            const auto start = std::chrono::steady_clock::now();
            auto output = context.Output();
            output.readable = [this, start](std::ostream& out) {
                const std::chrono::duration<double, std::milli> elapsed =
                    std::chrono::steady_clock::now() - start;
                char text[64];
                std::snprintf(text, sizeof text, " in %.1f ms", elapsed.count());
                out << "pong from " << context.settings.CommandEndPoint().Address() << text << '\n';
            };
            Execute(session, "PingCommand", params, output, context.out, context.err);
            return 0;
        });

        auto* servers = Subcommand(app, "servers", "List the servers",
                                   {"tessel servers", "tessel servers --on-network --json"});
        servers->add_flag("--on-network", onNetwork, "Only the servers on the network");
        On(servers, [this] {
            auto params = NewParams<Commands::GetServersCommandParams>();
            params.serverRange = onNetwork ? 1 : 0;
            return context.Send("GetServersCommand", params);
        });

        auto* channels = Subcommand(app, "channels", "Show the state of every player and recorder",
                                    {"tessel channels", "tessel channels --server 2",
                                     "tessel channels --json | jq '.playerStates'"});
        channels->add_option("--server", channelServer, "Only the channels of this server")
            ->check(WholeInRange(0, kInt32Max));
        On(channels, [this] {
            return context.Send("GetChannelsCommand",
                                NewParams<Commands::GetChannelsCommandParams>(),
                                [this](Commands::CommandReply& reply) { KeepServer(reply); });
        });

        auto* clips =
            Subcommand(app, "clips", "List clips, optionally filtered",
                       {"tessel clips", "tessel clips --name goal --limit 10",
                        "tessel clips --keyword replay --json", "tessel clips --umid 3fa4"});
        clips->add_option("--name", clipFilter.name,
                          "Only clips whose name contains this (any case)");
        clips->add_option("--keyword", clipFilter.keyword,
                          "Only clips with a keyword containing this (any case)");
        clips->add_option("--umid", clipFilter.umId, "Only clips whose umId starts with this");
        clips->add_option("--limit", clipFilter.limit, "At most this many clips (0: all)")
            ->check(WholeInRange(0, kInt64Max));
        On(clips, [this] {
            return context.Send("GetClipsCommand", NewParams<Commands::GetClipsCommandParams>(),
                                [this](Commands::CommandReply& reply) { clipFilter.Apply(reply); });
        });

        auto* trains = Subcommand(app, "trains", "List the trains that recorders feed",
                                  {"tessel trains", "tessel trains --json"});
        On(trains, [this] {
            return context.Send("GetTrainsCommand", NewParams<Commands::GetTrainsCommandParams>());
        });

        auto* playlists = Subcommand(app, "playlists", "List playlists",
                                     {"tessel playlists", "tessel playlists --id <umId> --json"});
        playlists->add_option("--id", playlistId, "Only the playlist with this umId");
        playlists->add_flag("--no-elements", playlistWithoutElements, "Leave the elements out");
        On(playlists, [this] {
            auto params = NewParams<Commands::GetPlaylistsCommandParams>();
            params.elementMode = playlistWithoutElements ? 1 : 0;
            if (!playlistId.empty()) {
                params.idFilter = Data::Guid(playlistId);
            }
            return context.Send("GetPlaylistsCommand", params);
        });
    }

    void AddPlayerCommands() {
        auto* play = Subcommand(app, "play", "Play players at a speed",
                                {"tessel play 1:0", "tessel play player:1:0 player:1:1 --speed 1/2",
                                 "tessel play 1:0 --speed=-1/1"});
        Players(play, players);
        play->add_option("--speed", speed, "Speed as N/D (1/1 normal, 1/2 half, -1/1 backwards)")
            ->capture_default_str();
        On(play, [this] {
            auto params = NewParams<Commands::PlayCommandParams>();
            params.players = ChannelSet(players, Guid::Player);
            std::tie(params.speedNum, params.speedDen) = ParseSpeed(speed);
            return context.Send("PlayCommand", params);
        });

        auto* pause = Subcommand(app, "pause", "Pause players (play at speed 0)",
                                 {"tessel pause 1:0", "tessel pause 1:0 1:1"});
        Players(pause, players);
        On(pause, [this] {
            auto params = NewParams<Commands::PlayCommandParams>();
            params.players = ChannelSet(players, Guid::Player);
            params.speedNum = 0;
            return context.Send("PlayCommand", params);
        });

        auto* step = Subcommand(
            app, "step", "Pause players and step them by fields",
            {"tessel step 1:0", "tessel step 1:0 --fields 10", "tessel step 1:0 --fields=-25"});
        Players(step, players);
        step->add_option("--fields", stepFields, "Fields to step; negative steps back")
            ->capture_default_str()
            ->check(WholeInRange(kInt32Min, kInt32Max));
        On(step, [this] {
            auto params = NewParams<Commands::StepCommandParams>();
            params.players = ChannelSet(players, Guid::Player);
            params.fieldCount = stepFields;
            return context.Send("StepCommand", params);
        });

        auto* load = Subcommand(
            app, "load", "Load a clip on a player, cued at its in point",
            {"tessel load 1:0 <clip umId>", "tessel load player:1:0 <clip umId> --at 4500000"});
        load->add_option("player", loadPlayer, "The player")->required();
        load->add_option("clip", loadClip, "The clip's umId (see tessel clips)")->required();
        load->add_option("--at", loadAt, "Cue at this time point (0: the in point)")
            ->capture_default_str()
            ->check(WholeInRange(std::numeric_limits<std::int64_t>::min(), kInt64Max));
        On(load, [this] {
            auto params = NewParams<Commands::LoadClipsCommandParams>();
            Commands::LoadClipCommandParam what;
            what.clip = Data::Guid(loadClip);
            what.timepoint = loadAt;
            params.playersParameters[ParseChannel(loadPlayer, Guid::Player)] = what;
            return context.Send("LoadClipsCommand", params);
        });

        auto* idle = Subcommand(app, "idle", "Unload players",
                                {"tessel idle 1:0", "tessel idle 1:0 1:1 --black"});
        Players(idle, players);
        idle->add_flag("--black", idleBlack, "Show black while idle");
        On(idle, [this] {
            auto params = NewParams<Commands::GoIdleCommandParams>();
            params.players = ChannelSet(players, Guid::Player);
            params.setBlackScreen = idleBlack;
            return context.Send("GoIdleCommand", params);
        });
    }

    void AddRecordCommands() {
        auto* record = app.add_subcommand("record", "Start or stop recorders");
        record->require_subcommand(1);
        record->footer(Examples({"tessel record start 1:4", "tessel record stop recorder:1:4"}));
        auto* start = Subcommand(*record, "start", "Start recorders recording",
                                 {"tessel record start 1:4", "tessel record start 1:4 1:5"});
        start
            ->add_option("recorders", recorders,
                         "Recorders: recorder:<server>:<channel> or <server>:<channel>")
            ->required();
        On(start, [this] {
            auto params = NewParams<Commands::StartCommandParams>();
            params.recorders = ChannelSet(recorders, Guid::Recorder);
            return context.Send("StartRecordingCommand", params);
        });
        auto* stop = Subcommand(*record, "stop", "Stop recorders; each recording becomes a clip",
                                {"tessel record stop 1:4"});
        stop->add_option("recorders", recorders,
                         "Recorders: recorder:<server>:<channel> or <server>:<channel>")
            ->required();
        On(stop, [this] {
            auto params = NewParams<Commands::StopCommandParams>();
            params.recorders = ChannelSet(recorders, Guid::Recorder);
            return context.Send("StopRecordingCommand", params);
        });
    }

    void AddMultiviewerCommands() {
        auto* multiviewer = app.add_subcommand("multiviewer", "Read or set what multiviewers show");
        multiviewer->require_subcommand(1);
        multiviewer->footer(Examples(
            {"tessel multiviewer get", "tessel multiviewer set 1:0 --message \"Replay 1\""}));
        auto* get = Subcommand(*multiviewer, "get", "Show the multiviewer data of every player",
                               {"tessel multiviewer get", "tessel multiviewer get --json"});
        On(get, [this] {
            return context.Send("GetMultiviewerDataCommand",
                                NewParams<Commands::GetMultiviewerDataCommandParams>());
        });
        auto* set = Subcommand(
            *multiviewer, "set",
            "Set what multiviewers show for a player; unset items are left out",
            {"tessel multiviewer set 1:0 --message \"Replay 1\"",
             "tessel multiviewer set 1:0 --control-mode 1 --post-roll yes --clip-in 4500000"});
        set->add_option("player", loadPlayer, "The player")->required();
        auto* message = set->add_option("--message", overrides.message.emplace(), "Text shown");
        auto* control =
            set->add_option("--control-mode", overrides.controlMode.emplace(), "Control mode");
        auto* program =
            set->add_option("--program-mode", overrides.programMode.emplace(), "Program mode");
        auto* postRoll =
            set->add_option("--post-roll", postRollText, "Post-roll enabled: yes or no")
                ->check(CLI::IsMember({"yes", "no"}));
        auto* clipIn = set->add_option("--clip-in", overrides.clipCreationIn.emplace(),
                                       "Clip creation in point (time point)");
        auto* clipOut = set->add_option("--clip-out", overrides.clipCreationOut.emplace(),
                                        "Clip creation out point (time point)");
        auto* first = set->add_option("--first-output", firstOutputText,
                                      "First controlled media output: yes or no")
                          ->check(CLI::IsMember({"yes", "no"}));
        On(set, [=] {
            auto params = NewParams<Commands::SetMultiviewerDataCommandParams>();
            const Guid player = ParseChannel(loadPlayer, Guid::Player);
            auto data = overrides;
            data.playerGuid = player;
            // Keep only what was given on the command line.
            const auto keepGiven = [](const CLI::Option* option, auto& item) {
                if (option->count() == 0) {
                    item.reset();
                }
            };
            keepGiven(message, data.message);
            keepGiven(control, data.controlMode);
            keepGiven(program, data.programMode);
            keepGiven(clipIn, data.clipCreationIn);
            keepGiven(clipOut, data.clipCreationOut);
            if (postRoll->count() != 0) {
                data.isPostRollEnabled = postRollText == "yes";
            }
            if (first->count() != 0) {
                data.isFirstControlledMediaOutput = firstOutputText == "yes";
            }
            params.playersDataOverrides[player] = data;
            return context.Send("SetMultiviewerDataCommand", params);
        });
    }

    void AddWatchAndDemo() {
        auto* watch =
            Subcommand(app, "watch",
                       "Print notifications as they arrive, until Ctrl-C (the link must come "
                       "up within --timeout)",
                       {"tessel watch", "tessel watch ChannelStatus",
                        "tessel watch ClipCommand/replay-1 ClipStatus --json",
                        "tessel watch --count 1 ServerStatus"});
        watch->add_option("topics", topics,
                          "Topic prefixes: ClipCommand, ClipStatus, ChannelStatus, ServerStatus, "
                          "optionally /<server name>; all when none");
        auto* count = watch->add_option("--count", watchCount, "Stop after this many notifications")
                          ->check(WholeInRange(1, kInt64Max));
        On(watch, [this, count] {
            std::optional<std::size_t> limit;
            if (count->count() != 0) {
                limit = watchCount;
            }
            return Watch(context.settings, topics, context.json, limit, context.out, context.err);
        });

        auto* demo = Subcommand(app, "demo",
                                "Start a simulator in this process and show the library at work",
                                {"tessel demo"});
        On(demo, [this] { return Demo(context.out, context.err); });
    }

    void KeepServer(Commands::CommandReply& reply) const {
        auto* channels = dynamic_cast<Commands::GetChannelsCommandReply*>(&reply);
        if (channelServer == 0 || channels == nullptr) {
            return;
        }
        const auto otherServer = [this](const auto& entry) {
            return entry.first.GetServer() != channelServer;
        };
        EraseIf(channels->playerStates, otherServer);
        EraseIf(channels->recorderStates, otherServer);
    }

    template <class Map, class Predicate>
    static void EraseIf(Map& map, Predicate predicate) {
        for (auto entry = map.begin(); entry != map.end();) {
            entry = predicate(*entry) ? map.erase(entry) : std::next(entry);
        }
    }

    CLI::App& app;
    Context& context;
    std::function<int()>& action;

    std::string callName;
    std::string callParameters;
    bool callList = false;
    bool onNetwork = false;
    int channelServer = 0;
    ClipFilter clipFilter;
    std::string playlistId;
    bool playlistWithoutElements = false;
    std::vector<std::string> players;
    std::vector<std::string> recorders;
    std::string speed = "1/1";
    std::int32_t stepFields = 1;
    std::string loadPlayer;
    std::string loadClip;
    std::int64_t loadAt = 0;
    bool idleBlack = false;
    Multiviewer::PlayerDataOverrides overrides;
    std::string postRollText;
    std::string firstOutputText;
    std::vector<std::string> topics;
    std::size_t watchCount = 0;
};

}  // namespace

const char* ExitCodeHelp() {
    return "Exit codes:\n"
           "  0  success\n"
           "  1  the server reported a failure (FailureReply, UnknownCommand, a failed result)\n"
           "  2  bad usage: unknown subcommand or option, missing argument, a value out of range,\n"
           "     malformed channel, speed, endpoint or server key\n"
           "  3  bad parameters: the JSON does not fit the command (syntax, unknown field, ...),\n"
           "     or an @FILE or standard input cannot be read or is over 16 MiB\n"
           "  4  time-out: the link was up but no reply came in time (--timeout)\n"
           "  5  no server: the link did not come up in time (nothing listens there, or the\n"
           "     handshake failed: wrong or missing --server-key); the message says which\n"
           "  6  bad reply: a reply could not be decoded, or the link failed while waiting\n"
           "  7  local failure: standard output cannot be written (a closed pipe), or this host\n"
           "     ran out of a resource (open files, memory)\n"
           "  130, 143  SIGINT or SIGTERM ended a command; the lines printed before are whole\n"
           "\n"
           "Limits: parameters from @FILE or - are read up to 16 MiB. Replies are printed as\n"
           "their messages arrive (tables are sized on their first 1000 rows); the tool does\n"
           "not keep a listing, whatever its length.";
}

void CheckOutput(std::ostream& out) {
    if (!out) {
        const int error = errno;
        throw CliError(ExitCode::Local, std::string("cannot write standard output: ") +
                                            (error != 0 ? std::strerror(error) : "write failed"));
    }
}

std::string ParametersText(const std::string& argument, std::istream& in) {
    if (argument.empty()) {
        return "{}";
    }
    if (argument != "-" && argument[0] != '@') {
        return argument;
    }
    const std::string path = argument.substr(1);
    const std::string what = argument == "-" ? "standard input" : path;
    std::ifstream file;
    if (argument != "-") {
        errno = 0;
        file.open(path, std::ios::binary);
        if (!file) {
            throw CliError(ExitCode::BadInput,
                           "cannot read " + path + ": " +
                               (errno != 0 ? std::strerror(errno) : "cannot be opened"));
        }
    }
    std::istream& source = argument == "-" ? in : file;
    // Read in chunks up to the limit: an endless source (/dev/zero, a pipe that never closes
    // but keeps writing) ends with an error instead of using up memory.
    std::string text;
    char chunk[64 * 1024];
    errno = 0;
    while (source.read(chunk, sizeof chunk) || source.gcount() > 0) {
        text.append(chunk, static_cast<std::size_t>(source.gcount()));
        if (text.size() > kParametersLimit) {
            throw CliError(ExitCode::BadInput,
                           "the parameters in " + what + " are over the limit of 16 MiB");
        }
    }
    if (source.bad()) {
        throw CliError(ExitCode::BadInput, "cannot read " + what + ": " +
                                               (errno != 0 ? std::strerror(errno) : "read failed"));
    }
    return text;
}

std::string NewCommandId() {
    // "tessel-" and a random process tag, then a count: unique enough to tell commands apart in
    // the server's logs, and recognisably sent by this tool.
    static const std::string tag = [] {
        char text[24];
        std::snprintf(text, sizeof text, "tessel-%08x-",
                      static_cast<unsigned>(std::random_device{}()));
        return std::string(text);
    }();
    static std::atomic<unsigned> counter{0};
    return tag + std::to_string(++counter);
}

Replies Execute(Session& session, const std::string& commandName,
                const Commands::CommandParams& params, const OutputOptions& output,
                std::ostream& out, std::ostream& err) {
    Progress progress(err, output.progress);
    ReplyPrinter printer(out, output.json);
    const bool custom = output.readable && !output.json;
    std::unique_ptr<Commands::CommandReply> last;  // the custom form shows only the final
    Replies kept;
    try {
        session.Call(
            commandName, params,
            [&](std::unique_ptr<Commands::CommandReply> reply, bool final) {
                progress.Finish();  // a table row must not land on the progress line
                if (output.filter) {
                    output.filter(*reply);
                }
                if (custom) {
                    last = std::move(reply);
                } else {
                    printer.Add(*reply);
                    out.flush();
                    CheckOutput(out);
                }
                progress.Add(last ? *last : *reply, final);
                if (output.keep && reply) {
                    kept.push_back(std::move(reply));
                }
            },
            output.interrupted);
    } catch (const CliError&) {
        // What arrived before the failure (a time-out, a signal) is shown whole.
        progress.Finish();
        printer.Finish();
        out.flush();
        throw;
    }
    progress.Finish();
    printer.Finish();
    if (custom && last) {
        Replies one;
        one.push_back(std::move(last));
        const auto failures = FailuresOf(one);
        if (failures.empty()) {
            output.readable(out);
        } else {
            PrintReadable(one, out);
            out.flush();
            CheckOutput(out);
            throw CliError(ExitCode::Failed, commandName + ": " + failures.front());
        }
    }
    out.flush();
    CheckOutput(out);
    if (printer.FailureCount() != 0) {
        throw CliError(ExitCode::Failed,
                       commandName + ": " + printer.FirstFailure() +
                           (printer.FailureCount() > 1
                                ? " (and " + std::to_string(printer.FailureCount() - 1) + " more)"
                                : ""));
    }
    return kept;
}

int Main(int argc, const char* const* argv, std::istream& in, std::ostream& out,
         std::ostream& err) {
    Context context(in, out, err);
    CLI::App app{
        "tessel: talk to a Tessel replay server from a shell. Every command, JSON in and "
        "out,\nnotifications live, and a guided demo on a built-in simulator.",
        "tessel"};
    app.footer(ExitCodeHelp());
    app.fallthrough();
    app.add_option("-c,--commands", context.settings.commandEndpoint,
                   "Command endpoint of the server")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
        ->capture_default_str();
    app.add_option("-n,--notifications", context.settings.notificationEndpoint,
                   "Notification endpoint of the server")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
        ->capture_default_str();
    app.add_option("-t,--timeout", context.timeoutSeconds,
                   "Seconds to wait for the link to come up, then for each reply message")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
        ->capture_default_str()
        ->check(SecondsInRange(kShortestTimeout, kLongestTimeout));
    app.add_option("-k,--server-key", context.settings.serverKey,
                   "The server's CURVE public key (Z85 or hex): encrypts both links")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    std::vector<std::string> levels{"off"};
    for (const auto& level : kLogLevels) {
        levels.emplace_back(level.first);
    }
    app.add_option("--log-level", context.logLevel, "Library log messages shown on standard error")
        ->capture_default_str()
        ->check(CLI::IsMember(levels));
    app.add_flag(
        "-j,--json", context.json,
        "Print JSON, one object per line: each reply message (every part of a listing, then "
        "the final), or each notification");

    std::function<int()> action;
    Subcommands commands(app, context, action);
    commands.AddAll();

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            const int code = app.exit(error, out, err);
            out.flush();
            return out ? code : static_cast<int>(ExitCode::Local);
        }
        err << "tessel: " << Printable(UsageErrorText(app, error)) << " (see tessel --help)\n";
        return static_cast<int>(ExitCode::Usage);
    }
    context.settings.timeout =
        std::chrono::milliseconds(std::llround(context.timeoutSeconds * 1000.0));
    SetUpLogging(context.logLevel);

    // Texts in messages may come from the server (a failure's message, a reply's header).
    const auto fail = [&err](ExitCode code, const std::string& message) {
        err << "tessel: " << Printable(message) << '\n' << std::flush;
        return static_cast<int>(code);
    };
    try {
        if (!action) {
            throw CliError(ExitCode::Usage, "a subcommand is required (see tessel --help)");
        }
        const int code = action();
        out.flush();
        CheckOutput(out);
        return code;
    } catch (const CliError& error) {
        return fail(error.GetCode(), error.what());
    } catch (const Json::JsonError& error) {
        return fail(ExitCode::BadInput, std::string("bad parameters (") +
                                            Json::JsonError::KindName(error.GetKind()) +
                                            "): " + error.what());
    } catch (const Common::Messaging::Exception& error) {
        return fail(ExitCode::NoServer, error.what());
    } catch (const std::bad_alloc&) {
        return fail(ExitCode::Local, "out of memory");
    } catch (const std::exception& error) {
        return fail(ExitCode::BadReply, error.what());
    }
}

}  // namespace Korvo::Plexis::Tessel::Cli

// The subcommands for the rest of the channel commands: live, chain, dial, sync, boundaries.

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <Korvo/Plexis/Data/Channels/LoadBoundary.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ChainCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/DialCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LiveCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SetLoadBoundariesCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SyncCommandParams.h>

#include "Errors.h"
#include "Lookup.h"
#include "Output.h"
#include "Subcommands.h"
#include "Text.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Commands = HighLevelOperations::Commands;
using Data::Channels::Guid;
using Data::Channels::LoadBoundary;

namespace {

// A whole number of the range of `T`, or a usage failure naming `what`.
template <class T>
T Whole(const std::string& text, const std::string& what) {
    char* end = nullptr;
    errno = 0;
    const long long value = std::strtoll(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || errno == ERANGE ||
        value < static_cast<long long>(std::numeric_limits<T>::min()) ||
        value > static_cast<long long>(std::numeric_limits<T>::max())) {
        throw CliError(ExitCode::Usage, "\"" + text + "\" is not " + what);
    }
    return static_cast<T>(value);
}

// "at:<time point>" or "fields:<count>" as a load boundary of `type`; empty text: no boundary.
LoadBoundary ParseBoundary(const std::string& text, std::int32_t type) {
    if (text.empty()) {
        return {};
    }
    const auto colon = text.find(':');
    const std::string kind = text.substr(0, colon);
    const std::string value = colon == std::string::npos ? "" : text.substr(colon + 1);
    if (kind == "at") {
        return LoadBoundary::Absolute(type, Whole<std::int64_t>(value, "a time point"));
    }
    if (kind == "fields") {
        return LoadBoundary::Relative(type, Whole<std::int64_t>(value, "a count of fields"));
    }
    throw CliError(ExitCode::Usage, "\"" + text +
                                        "\" is not a boundary: write at:<time point> or "
                                        "fields:<count>");
}

struct Boundaries {
    std::string in;
    std::string out;
    std::int32_t type = 0;
};

void AddBoundaryOptions(CLI::App* command, Boundaries& boundaries) {
    command->add_option("--in", boundaries.in,
                        "In boundary: at:<time point>, or fields:<count> from the material's "
                        "start");
    command->add_option("--out", boundaries.out,
                        "Out boundary: at:<time point>, or fields:<count> from the in point");
    command->add_option("--boundary-type", boundaries.type,
                        "The boundaries' type, a value the server defines")
        ->capture_default_str()
        ->check(WholeInRange(kInt32Min, kInt32Max));
}

// The feed a player goes live on: a recorder's channel text, or a train's umId as it is.
Data::Guid FeedOf(const std::string& text) {
    const auto channel = Guid::Parse(!text.empty() && text[0] >= '0' && text[0] <= '9'
                                         ? "recorder:" + text
                                         : text);
    if (channel && !channel->IsUndefined()) {
        return Data::Guid(channel->ToString());
    }
    return Data::Guid(text);
}

struct ChannelOptions {
    std::vector<std::string> liveArguments;  // live: PLAYER[=FEED]...
    std::string liveFeed;
    std::vector<std::string> chainArguments;  // chain: players, then the clip
    std::int64_t chainAt = 0;
    Boundaries chainBoundaries;
    std::vector<std::string> dialPlayers;
    std::vector<std::string> dialVelocities;
    std::vector<std::string> syncArguments;  // sync: source, then players
    Boundaries syncBoundaries;
    std::vector<std::string> boundaryPlayers;
    Boundaries boundaries;
};

// Sends each velocity through the latest-value lane, then waits for the last one and shows its
// reply: values that a slow server had no time for are replaced, never queued.
int Dial(Context& context, const std::set<Guid>& players,
         const std::vector<std::string>& given) {
    SignalGuard guard;
    Session& session = context.GetSession();
    Client::Connection& link = session.Connected();
    std::optional<Client::Operation<Commands::DialCommandParams>> last;
    std::size_t sent = 0;
    const auto send = [&](const std::string& text) {
        auto params = NewParams<Commands::DialCommandParams>();
        params.players = players;
        params.velocity = Whole<std::int32_t>(text, "a velocity (a whole number)");
        last = link.SendLatest(params);
        ++sent;
    };
    const bool streamed = given.size() == 1 && given.front() == "-";
    if (streamed) {
        for (std::string line; !SignalGuard::Received() && std::getline(context.in, line);) {
            if (!Trimmed(line).empty()) {
                send(Trimmed(line));
            }
        }
    } else {
        for (const auto& text : given) {
            send(text);
        }
    }
    if (const int signal = SignalGuard::Received()) {
        throw CliError(static_cast<ExitCode>(128 + signal), "DialCommand: interrupted");
    }
    if (!last) {
        return 0;
    }
    const auto deadline = std::chrono::steady_clock::now() + session.GetSettings().timeout;
    Client::Outcome outcome = Client::Outcome::Pending;
    while ((outcome = last->Wait(std::chrono::milliseconds(100))) == Client::Outcome::Pending) {
        if (const int signal = SignalGuard::Received()) {
            last->Cancel();
            throw CliError(static_cast<ExitCode>(128 + signal), "DialCommand: interrupted");
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            last->Cancel();
            throw CliError(ExitCode::TimedOut,
                           "no reply to DialCommand within " +
                               SecondsText(session.GetSettings().timeout) +
                               ": the link is up but the server did not answer in time");
        }
    }
    if (outcome != Client::Outcome::Replied) {
        throw session.Failure("DialCommand", outcome, last->Reason());
    }
    ReplyPrinter printer(context.out, context.json);
    printer.Add(*last->GetReply());
    printer.Finish();
    context.out.flush();
    CheckOutput(context.out);
    if (printer.FailureCount() != 0) {
        throw CliError(ExitCode::Failed, "DialCommand: " + printer.FirstFailure());
    }
    return 0;
}

}  // namespace

void AddChannelCommands(CLI::App& app, Context& context) {
    const auto options = std::make_shared<ChannelOptions>();

    auto* live = Subcommand(
        app, "live", "Put players on a recorder's live feed",
        {"tessel live 1:0 --feed 1:4", "tessel live 1:0=1:4 1:1=recorder:1:5",
         "tessel live 2:0 2:1 --feed recorder:2:4"});
    live->add_option("players", options->liveArguments,
                     "PLAYER or PLAYER=FEED; a feed is a recorder (recorder:<server>:<channel> "
                     "or <server>:<channel>) or a train's umId")
        ->required();
    live->add_option("--feed", options->liveFeed, "The feed of the players given without one");
    On(live, context, [&context, options] {
        auto params = NewParams<Commands::LiveCommandParams>();
        for (const auto& argument : options->liveArguments) {
            const auto equals = argument.find('=');
            const std::string feed =
                equals == std::string::npos ? options->liveFeed : argument.substr(equals + 1);
            if (feed.empty()) {
                throw CliError(ExitCode::Usage, "live: no feed for " + argument +
                                                    ": write PLAYER=FEED or give --feed");
            }
            params.players[ParseChannel(argument.substr(0, equals), Guid::Player)] = FeedOf(feed);
        }
        return context.Send("LiveCommand", params);
    });

    auto* chain = Subcommand(
        app, "chain", "Chain a clip (by name, umId prefix or umId) after what players have loaded",
        {"tessel chain 1:0 \"Clip 00007\"", "tessel chain 1:0 1:1 0a2d --at 4500000",
         "tessel chain 1:0 0a2d --in fields:25 --out fields:250"});
    chain->add_option("players", options->chainArguments,
                      "PLAYER... CLIP: the players, then the clip")
        ->required()
        ->expected(2, -1);
    chain->add_option("--at", options->chainAt, "Where the chained clip starts (0: its in point)")
        ->capture_default_str()
        ->check(WholeInRange(kInt64Min, kInt64Max));
    AddBoundaryOptions(chain, options->chainBoundaries);
    On(chain, context, [&context, options] {
        auto players = options->chainArguments;
        const std::string text = players.back();
        players.pop_back();
        const auto channels = ChannelSet(players, Guid::Player);
        const auto& bounds = options->chainBoundaries;
        auto params = NewParams<Commands::ChainCommandParams>();
        params.timepoint = options->chainAt;
        params.inBoundary = ParseBoundary(bounds.in, bounds.type);
        params.outBoundary = ParseBoundary(bounds.out, bounds.type);
        const Material clip = FindMaterial(context.GetSession(), text, Catalogue::Clips);
        for (const auto& player : channels) {
            params.players[player] = Data::Guid(clip.umId);
        }
        return context.Send("ChainCommand", params);
    });

    auto* dial = Subcommand(
        app, "dial", "Jog players at a velocity, or at each velocity read from standard input",
        {"tessel dial 1:0 --velocity 50", "tessel dial 1:0 1:1 --velocity=-25",
         "jog-wheel | tessel dial 1:0 --velocity -"});
    dial->add_option("players", options->dialPlayers, "Players")->required();
    dial->add_option("--velocity", options->dialVelocities,
                     "Velocity (the simulator counts hundredths of normal speed, negative "
                     "backwards); several are sent in turn; - reads them from standard input, "
                     "one a line. Each goes through the latest-value lane: a newer velocity "
                     "replaces one the server has not been sent yet, and the last one's reply "
                     "is shown")
        ->required()
        ->allow_extra_args(false);
    On(dial, context, [&context, options] {
        return Dial(context, ChannelSet(options->dialPlayers, Guid::Player),
                    options->dialVelocities);
    });

    auto* sync = Subcommand(
        app, "sync", "Make players follow a source player's material, position and speed",
        {"tessel sync 1:0 1:1", "tessel sync 1:0 1:1 1:2 --in fields:0 --out fields:500"});
    sync->add_option("players", options->syncArguments,
                     "SOURCE PLAYER...: the source player, then the players that follow it")
        ->required()
        ->expected(2, -1);
    AddBoundaryOptions(sync, options->syncBoundaries);
    On(sync, context, [&context, options] {
        auto params = NewParams<Commands::SyncCommandParams>();
        auto players = options->syncArguments;
        params.sourcePlayer = ParseChannel(players.front(), Guid::Player);
        players.erase(players.begin());
        params.players = ChannelSet(players, Guid::Player);
        const auto& bounds = options->syncBoundaries;
        params.inBoundary = ParseBoundary(bounds.in, bounds.type);
        params.outBoundary = ParseBoundary(bounds.out, bounds.type);
        return context.Send("SyncCommand", params);
    });

    auto* boundaries = Subcommand(
        app, "boundaries", "Move the in and out points of what players have loaded",
        {"tessel boundaries 1:0 --in at:4500000 --out at:4502500",
         "tessel boundaries 1:0 1:1 --in fields:25 --out fields:250"});
    boundaries->add_option("players", options->boundaryPlayers, "Players")->required();
    AddBoundaryOptions(boundaries, options->boundaries);
    On(boundaries, context, [&context, options] {
        const auto& bounds = options->boundaries;
        Commands::SetLoadBoundariesCommandParam what;
        what.inBoundary = ParseBoundary(bounds.in, bounds.type);
        what.outBoundary = ParseBoundary(bounds.out, bounds.type);
        auto params = NewParams<Commands::SetLoadBoundariesCommandParams>();
        for (const auto& player : ChannelSet(options->boundaryPlayers, Guid::Player)) {
            params.playersParameters[player] = what;
        }
        return context.Send("SetLoadBoundariesCommand", params);
    });
}

}  // namespace Korvo::Plexis::Tessel::Cli

#pragma once

// What the subcommands of `tessel` share: the global options, the session, the choice of what to
// run, and the helpers that declare a subcommand. Each group of subcommands is declared in a file
// of its own (CallCommand, ListingCommands, PlayerCommands, RecorderCommands,
// ChannelCommands, MultiviewerCommands, WatchCommands) and owns its options there.

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <istream>
#include <limits>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

#include "Session.h"
#include "Tool.h"

namespace Korvo::Plexis::Tessel::Cli {

/// While it lives, SIGINT and SIGTERM only note the signal (`Received`), so that the tool ends
/// between two lines of output (never inside one) with 128 + the signal.
class SignalGuard {
public:
    SignalGuard();
    ~SignalGuard();
    SignalGuard(const SignalGuard&) = delete;
    SignalGuard& operator=(const SignalGuard&) = delete;

    /// The signal that asked a command to stop, or 0 while none came.
    static int Received();

private:
    struct Previous;
    std::unique_ptr<Previous> previous;
};

/// The global options, the session (made on first use) and the subcommand chosen.
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
    /// What the chosen subcommand runs once the command line is parsed; empty when none was.
    std::function<int()> action;

    Session& GetSession();

    /// How replies are shown, from the global options.
    OutputOptions Output(
        std::function<void(HighLevelOperations::Commands::CommandReply&)> filter = {}) const;

    /// Sends one command and shows its reply (`Execute`) under a `SignalGuard`; returns 0.
    int Send(const std::string& name, const HighLevelOperations::Commands::CommandParams& params,
             std::function<void(HighLevelOperations::Commands::CommandReply&)> filter = {});
};

/// A subcommand of `parent` whose help ends with `examples` and a pointer to the exit codes.
CLI::App* Subcommand(CLI::App& parent, const char* name, const char* description,
                     std::initializer_list<const char*> examples);

/// "Examples:" and one indented line each, then the pointer to the exit codes.
std::string Examples(std::initializer_list<const char*> lines);

/// Makes `run` the action of `context` when `command` is chosen.
void On(CLI::App* command, Context& context, std::function<int()> run);

/// A whole number from `low` to `high`; the message names the range.
CLI::Validator WholeInRange(long long low, long long high);

inline constexpr long long kInt32Max = std::numeric_limits<std::int32_t>::max();
inline constexpr long long kInt32Min = std::numeric_limits<std::int32_t>::min();
inline constexpr long long kInt64Max = std::numeric_limits<std::int64_t>::max();
inline constexpr long long kInt64Min = std::numeric_limits<std::int64_t>::min();

/// The channels named by `texts`, each of kind `kind`. Throws `CliError` (Usage) for a text that
/// is not a channel.
std::set<Data::Channels::Guid> ChannelSet(const std::vector<std::string>& texts,
                                          Data::Channels::Guid::Type kind);

/// The groups of subcommands, each adding its own to `app`.
void AddCallCommand(CLI::App& app, Context& context);
void AddListingCommands(CLI::App& app, Context& context);
void AddPlayerCommands(CLI::App& app, Context& context);
void AddChannelCommands(CLI::App& app, Context& context);
void AddRecorderCommands(CLI::App& app, Context& context);
void AddMultiviewerCommands(CLI::App& app, Context& context);
void AddWatchCommands(CLI::App& app, Context& context);

}  // namespace Korvo::Plexis::Tessel::Cli

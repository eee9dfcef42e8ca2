#pragma once

// The command-line tool's entry points, kept in a library so that tests reach them.

#include <cstddef>
#include <functional>
#include <istream>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

#include "Session.h"

namespace Korvo::Plexis::Tessel::Cli {

/// Runs `tessel` with the command line `argv` (program name first), reading parameters from `in`
/// when asked to ("-"), writing results to `out` and messages to `err`. Returns the process exit
/// code (`ExitCode`); never throws.
int Main(int argc, const char* const* argv, std::istream& in, std::ostream& out, std::ostream& err);

/// How `Execute` shows a reply.
struct OutputOptions {
    bool json = false;      ///< one JSON object per reply message instead of tables
    bool progress = false;  ///< a progress line on `err` while a listing arrives in parts
    /// Applied to each message before it is shown (a filter of a listing), when set.
    std::function<void(HighLevelOperations::Commands::CommandReply&)> filter;
    /// Shows a successful reply instead of the standard tables, when set (not with `json`).
    std::function<void(std::ostream&)> readable;
    /// Whether `Execute` returns the messages it showed (for replies known to be small).
    bool keep = false;
    /// Asked while waiting: the number of a signal that asks to stop, or 0.
    Session::Interruption interrupted;
};

/// The most bytes of parameters `call` reads from a file or standard input (16 MiB).
constexpr std::size_t kParametersLimit = std::size_t{16} << 20;

/// Sends one command and shows each message of its reply on `out` as it arrives, flushed per
/// message. Returns the messages when `output.keep`, otherwise none. Throws `CliError`: what
/// `Session::Call` throws, Local when `out` cannot be written, and Failed (after showing the
/// reply) when the reply reports a failure.
Replies Execute(Session& session, const std::string& commandName,
                const HighLevelOperations::Commands::CommandParams& params,
                const OutputOptions& output, std::ostream& out, std::ostream& err);

/// Throws `CliError` (Local) naming the system's reason when `out` (standard output) failed.
void CheckOutput(std::ostream& out);

/// The parameters text of `call` for `argument`: inline JSON, "@FILE", "-" for `in`, "{}" when
/// empty. Reads at most `kParametersLimit` bytes. Throws `CliError` (BadInput) for a file that
/// cannot be opened (with the system's reason), and for input over the limit.
std::string ParametersText(const std::string& argument, std::istream& in);

/// A fresh command identifier: "tessel-<random process tag>-<count>". Any thread.
std::string NewCommandId();

/// Parameters of class `P` with a fresh command identifier.
template <class P>
P NewParams() {
    P params;
    params.commandGuid = Data::Guid(NewCommandId());
    return params;
}

/// What `Watch` prints and when it stops.
struct WatchRequest {
    /// The topics subscribed to (a family name, optionally "/<server name>"); empty: all.
    std::vector<std::string> topics;
    /// The notification type names printed; empty: every type that the topics bring.
    std::set<std::string> types;
    bool json = false;
    /// Stop after this many notifications printed; none: until a signal.
    std::optional<std::size_t> count;
    /// Written (with one line, "ready") once subscribed, when not empty.
    std::string readyFile;
};

/// The topics and type filter of `watch`'s arguments: each is a family name (ClipCommand,
/// ClipStatus, ChannelStatus, ServerStatus) or a notification type name (PlayerStateChanged,
/// ...), optionally followed by "/<server name>". A type name subscribes to its family and prints
/// that type only. Throws `CliError` (Usage) for any other name, listing the valid ones.
void ParseWatchTopics(const std::vector<std::string>& arguments, WatchRequest& request);

/// Prints the notifications that arrive on `settings`' notification endpoint, one line each (JSON
/// with `request.json`), until SIGINT or SIGTERM, until `request.count` have been printed, or
/// until the reader of standard output has gone. Once subscribed it says so on `err` ("tessel:
/// ready: ...") and writes `request.readyFile`: every notification endpoint completed its
/// handshake (ZeroMQ sends the subscription ahead of anything else on it) and then the server
/// answered a ping on the command endpoint (when that fails within the time-out, the line says
/// so and only the handshake stands). Blocks SIGINT and SIGTERM in the calling thread and the
/// threads it starts, and ignores SIGPIPE; call it before any other thread exists. Returns 0;
/// throws `OutputClosed` when standard output is a pipe whose reader has gone. Throws `CliError`: NoServer when
/// the link does not come up within `settings.timeout`, Local when `out` cannot be written for
/// another reason or the ready file cannot be written.
int Watch(const ConnectionSettings& settings, const WatchRequest& request, std::ostream& out,
          std::ostream& err);

/// Starts a simulator in this process and walks through a scenario against it, narrating each
/// step and the notifications it causes. Returns 0 when every step succeeded; throws `CliError`
/// for the first step that failed.
int Demo(std::ostream& out, std::ostream& err);

}  // namespace Korvo::Plexis::Tessel::Cli

#pragma once

// The failures the command-line tool reports, each with its own exit code, so that a script can
// tell "the server said no" from "nobody answered" without reading the message.

#include <stdexcept>
#include <string>

namespace Korvo::Plexis::Tessel::Cli {

/// The process exit codes of `tessel`. The values are part of its interface (README, --help).
/// Besides these, 128 + the signal's number (130, 143) when SIGINT or SIGTERM ended a command.
enum class ExitCode : int {
    Ok = 0,
    Failed = 1,    ///< the server answered with a failure (FailureReply, UnknownCommand, a result
                   ///< with a failure status)
    Usage = 2,     ///< bad command line: unknown option, missing argument, malformed channel
    BadInput = 3,  ///< the JSON parameters do not fit the command (syntax, unknown field, ...)
    TimedOut = 4,  ///< the link was up but no reply came within the time-out
    NoServer = 5,  ///< the link to the server never came up within the time-out
    BadReply = 6,  ///< a reply could not be decoded, or the link failed while waiting
    Local = 7,     ///< the tool itself could not go on: standard output could not be written, or
                   ///< a resource of this host ran out (open files, memory)
};

/// The footer of `tessel --help`: the exit codes above, one line each.
const char* ExitCodeHelp();

/// A failure that ends the command with `code` and one line on standard error (`what()`).
class CliError : public std::runtime_error {
public:
    CliError(ExitCode code, const std::string& message) : std::runtime_error(message), code(code) {}

    ExitCode GetCode() const noexcept { return code; }

private:
    ExitCode code;
};

/// Ends a command that streams until its reader goes (watch) quietly, with 0: the reader of
/// standard output has gone, so nothing more is wanted.
struct OutputClosed {};

}  // namespace Korvo::Plexis::Tessel::Cli

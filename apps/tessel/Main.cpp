// The command line of `tessel`: global options, the groups of subcommands, and the mapping of
// every failure to its exit code.

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>

#include <CLI/CLI.hpp>

#include <Korvo/Common/Messaging/Exception.h>
#include <Korvo/Plexis/Tessel/Json/CommandParamsJson.h>
#include <Korvo/Plexis/Tessel/Logging/Loggers.h>
#include <Korvo/Plexis/Tessel/Logging/StandardErrorLoggerFactory.h>

#include "Completion.h"
#include "Errors.h"
#include "Subcommands.h"
#include "Text.h"
#include "Tool.h"
#include "Top.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace {

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
           "  7  local failure: standard output cannot be written (a closed pipe; watch ends with\n"
           "     0 instead), or this host ran out of a resource (open files, memory)\n"
           "  130, 143  SIGINT or SIGTERM ended a command; the lines printed before are whole\n"
           "\n"
           "Limits: parameters from @FILE or - are read up to 16 MiB. Replies are printed as\n"
           "their messages arrive (tables are sized on their first 1000 rows); the tool does\n"
           "not keep a listing, whatever its length.";
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
    app.set_version_flag("--version", std::string("tessel ") + KORVO_TESSEL_VERSION);
    // The environment gives what the command line does not.
    app.add_option("-c,--commands", context.settings.commandEndpoint,
                   "Command endpoint of the server")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
        ->capture_default_str()
        ->envname("TESSEL_COMMANDS");
    app.add_option("-n,--notifications", context.settings.notificationEndpoint,
                   "Notification endpoint of the server")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
        ->capture_default_str()
        ->envname("TESSEL_NOTIFICATIONS");
    app.add_option("-t,--timeout", context.timeoutSeconds,
                   "Seconds to wait for the link to come up, then for each reply message")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
        ->capture_default_str()
        ->check(SecondsInRange(kShortestTimeout, kLongestTimeout));
    app.add_option("-k,--server-key", context.settings.serverKey,
                   "The server's CURVE public key (Z85 or hex): encrypts both links")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
        ->envname("TESSEL_SERVER_KEY");
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

    bool completion = false;
    app.add_flag("--bash-completion", completion, "Print the bash completion script")
        ->group("");  // for the build, which installs the script

    AddCallCommand(app, context);
    AddListingCommands(app, context);
    AddPlayerCommands(app, context);
    AddChannelCommands(app, context);
    AddRecorderCommands(app, context);
    AddMultiviewerCommands(app, context);
    AddWatchCommands(app, context);
    AddTopCommand(app, context);

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
    if (completion) {
        WriteBashCompletion(app, out);
        out.flush();
        return out ? 0 : static_cast<int>(ExitCode::Local);
    }
    try {
        if (!context.action) {
            throw CliError(ExitCode::Usage, "a subcommand is required (see tessel --help)");
        }
        const int code = context.action();
        out.flush();
        CheckOutput(out);
        return code;
    } catch (const OutputClosed&) {
        out.clear();
        return static_cast<int>(ExitCode::Ok);
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

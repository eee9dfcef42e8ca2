// Sending one command and showing its reply as it arrives; the parameters text of `call`; the
// command identifiers the tool makes.

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <random>

#include "Errors.h"
#include "Output.h"
#include "Tool.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Commands = HighLevelOperations::Commands;

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

}  // namespace Korvo::Plexis::Tessel::Cli

// The helpers every group of subcommands uses: signals while a command runs, the session, the
// help text of a subcommand, the validation of numbers.

#include "Subcommands.h"

#include <signal.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "Output.h"
#include "Text.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Commands = HighLevelOperations::Commands;

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

}  // namespace

struct SignalGuard::Previous {
    struct sigaction interrupt {};
    struct sigaction terminate {};
};

SignalGuard::SignalGuard() : previous(std::make_unique<Previous>()) {
    struct sigaction action {};
    action.sa_handler = NoteSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &previous->interrupt);
    sigaction(SIGTERM, &action, &previous->terminate);
}

SignalGuard::~SignalGuard() {
    sigaction(SIGINT, &previous->interrupt, nullptr);
    sigaction(SIGTERM, &previous->terminate, nullptr);
}

int SignalGuard::Received() { return receivedSignal.load(); }

Session& Context::GetSession() {
    if (!session) {
        session = std::make_unique<Session>(settings);
    }
    return *session;
}

OutputOptions Context::Output(std::function<void(Commands::CommandReply&)> filter) const {
    OutputOptions options;
    options.json = json;
    options.progress = StandardErrorIsTerminal();
    options.filter = std::move(filter);
    options.interrupted = &SignalGuard::Received;
    return options;
}

int Context::Send(const std::string& name, const Commands::CommandParams& params,
                  std::function<void(Commands::CommandReply&)> filter) {
    SignalGuard guard;
    Execute(GetSession(), name, params, Output(std::move(filter)), out, err);
    return 0;
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

void On(CLI::App* command, Context& context, std::function<int()> run) {
    command->callback([&context, run = std::move(run)] { context.action = run; });
}

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

std::set<Data::Channels::Guid> ChannelSet(const std::vector<std::string>& texts,
                                          Data::Channels::Guid::Type kind) {
    std::set<Data::Channels::Guid> channels;
    for (const auto& text : texts) {
        channels.insert(ParseChannel(text, kind));
    }
    return channels;
}

}  // namespace Korvo::Plexis::Tessel::Cli

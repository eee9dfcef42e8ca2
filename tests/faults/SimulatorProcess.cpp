#include "faults/SimulatorProcess.h"

#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <stdexcept>

namespace Korvo::Testing {
namespace {

std::vector<std::string> CommandLine(std::vector<std::string> arguments) {
    if (std::find(arguments.begin(), arguments.end(), "--commands") == arguments.end()) {
        arguments.push_back("--ephemeral");
    }
    arguments.insert(arguments.begin(), KORVO_TESSEL_SIM_PATH);
    return arguments;
}

}  // namespace

SimulatorProcess::SimulatorProcess(std::vector<std::string> arguments,
                                   std::chrono::milliseconds limit)
    : ChildProcess(CommandLine(std::move(arguments)), "", /*captureErrors=*/false) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (commandEndpoint.empty() || notificationEndpoint.empty()) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        const auto line = ReadLineUntil([](const std::string&) { return true; },
                                        std::max(left, std::chrono::milliseconds(0)));
        if (!line) {
            throw std::runtime_error("tessel-sim did not print its endpoints; it printed: " + Out());
        }
        for (auto [prefix, endpoint] : {std::pair{"commands: ", &commandEndpoint},
                                        std::pair{"notifications: ", &notificationEndpoint}}) {
            if (line->rfind(prefix, 0) == 0) {
                *endpoint = line->substr(std::char_traits<char>::length(prefix));
            }
        }
    }
}

void SimulatorProcess::Freeze() {
    Signal(SIGSTOP);
    AwaitChange(WUNTRACED);  // the signal is delivered asynchronously; return once it is stopped
}

void SimulatorProcess::Resume() {
    Signal(SIGCONT);
    AwaitChange(WCONTINUED);
}

void SimulatorProcess::AwaitChange(int options) {
    int status = 0;
    while (Pid() > 0 && ::waitpid(Pid(), &status, options) < 0 && errno == EINTR) {
    }
}

}  // namespace Korvo::Testing

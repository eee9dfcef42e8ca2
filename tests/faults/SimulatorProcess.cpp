#include "faults/SimulatorProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>

namespace Korvo::Testing {
namespace {

// The value after `prefix` on the line of `text` that starts with it; empty when there is none.
std::string ValueOf(const std::string& text, const std::string& prefix) {
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = text.find('\n', start);
        if (end == std::string::npos) {
            break;  // an incomplete line may still grow
        }
        if (text.compare(start, prefix.size(), prefix) == 0) {
            return text.substr(start + prefix.size(), end - start - prefix.size());
        }
        start = end + 1;
    }
    return {};
}

}  // namespace

SimulatorProcess::SimulatorProcess(std::vector<std::string> arguments,
                                   std::chrono::milliseconds limit) {
    if (std::find(arguments.begin(), arguments.end(), "--commands") == arguments.end()) {
        arguments.push_back("--ephemeral");
    }
    arguments.insert(arguments.begin(), KORVO_TESSEL_SIM_PATH);
    // Everything the child needs is prepared before the fork: after it, in a process with other
    // threads, only async-signal-safe calls are allowed.
    std::vector<char*> argv;
    for (std::string& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    int pipeEnds[2];
    if (::pipe2(pipeEnds, O_CLOEXEC) != 0) {
        throw std::runtime_error(std::string("pipe: ") + std::strerror(errno));
    }
    const pid_t parent = ::getpid();
    pid = ::fork();
    if (pid < 0) {
        const int error = errno;
        ::close(pipeEnds[0]);
        ::close(pipeEnds[1]);
        throw std::runtime_error(std::string("fork: ") + std::strerror(error));
    }
    if (pid == 0) {
        // Die with the test process (a crash or an abort skips every destructor).
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent) {
            ::_exit(127);
        }
        ::dup2(pipeEnds[1], STDOUT_FILENO);  // dup2 clears close-on-exec on the copy
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    ::close(pipeEnds[1]);
    output = pipeEnds[0];

    std::string printed;
    const auto deadline = std::chrono::steady_clock::now() + limit;
    for (;;) {
        commandEndpoint = ValueOf(printed, "commands: ");
        notificationEndpoint = ValueOf(printed, "notifications: ");
        if (!commandEndpoint.empty() && !notificationEndpoint.empty()) {
            return;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd item{output, POLLIN, 0};
        char buffer[512];
        ssize_t count = 0;
        if (left.count() > 0 && ::poll(&item, 1, static_cast<int>(left.count())) > 0) {
            count = ::read(output, buffer, sizeof buffer);
        }
        if (count <= 0) {
            Kill();
            ::close(output);
            throw std::runtime_error("tessel-sim did not print its endpoints; it printed: " +
                                     printed);
        }
        printed.append(buffer, static_cast<std::size_t>(count));
    }
}

SimulatorProcess::~SimulatorProcess() {
    Kill();
    ::close(output);
}

void SimulatorProcess::Signal(int number) {
    if (pid > 0) {
        ::kill(pid, number);
    }
}

void SimulatorProcess::Kill() {
    if (pid <= 0) {
        return;
    }
    ::kill(pid, SIGKILL);  // also ends a frozen process
    while (::waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
    pid = -1;
}

bool SimulatorProcess::Running() {
    if (pid <= 0) {
        return false;
    }
    int status = 0;
    pid_t reaped;
    while ((reaped = ::waitpid(pid, &status, WNOHANG)) < 0 && errno == EINTR) {
    }
    if (reaped == pid) {
        pid = -1;
        return false;
    }
    return true;
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
    if (pid <= 0) {
        return;
    }
    int status = 0;
    while (::waitpid(pid, &status, options) < 0 && errno == EINTR) {
    }
}

}  // namespace Korvo::Testing

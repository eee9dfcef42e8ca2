#include "support/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace Korvo::Testing {

namespace {

void ClosePipe(int fds[2]) {
    for (int index = 0; index < 2; ++index) {
        if (fds[index] >= 0) {
            ::close(fds[index]);
        }
    }
}

int ExitCodeOf(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, const std::string& input,
                           bool captureErrors) {
    // Everything the child needs is prepared before the fork: after it, in a process with other
    // threads, only async-signal-safe calls are allowed.
    std::vector<char*> argv;
    for (const auto& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    int inPipe[2] = {-1, -1};
    int outPipe[2] = {-1, -1};
    int errPipe[2] = {-1, -1};
    if (::pipe2(inPipe, O_CLOEXEC) != 0 || ::pipe2(outPipe, O_CLOEXEC) != 0 ||
        (captureErrors && ::pipe2(errPipe, O_CLOEXEC) != 0)) {
        const int error = errno;
        ClosePipe(inPipe);
        ClosePipe(outPipe);
        ClosePipe(errPipe);
        throw std::runtime_error(std::string("pipe: ") + std::strerror(error));
    }
    const pid_t parent = ::getpid();
    pid = ::fork();
    if (pid == 0) {
        // Die with the test process (a crash or an abort skips every destructor).
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent) {
            ::_exit(127);
        }
        // dup2 clears close-on-exec on the copies.
        ::dup2(inPipe[0], STDIN_FILENO);
        ::dup2(outPipe[1], STDOUT_FILENO);
        if (captureErrors) {
            ::dup2(errPipe[1], STDERR_FILENO);
        }
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    const int error = errno;
    ::close(inPipe[0]);
    ::close(outPipe[1]);
    if (captureErrors) {
        ::close(errPipe[1]);
    }
    outFd = outPipe[0];
    errFd = errPipe[0];
    if (pid < 0) {
        for (int fd : {inPipe[1], outFd, errFd}) {
            if (fd >= 0) {
                ::close(fd);
            }
        }
        throw std::runtime_error("cannot start " + arguments[0] + ": " + std::strerror(error));
    }
    // Small inputs fit the pipe's buffer; a child that exits early must not kill us with SIGPIPE.
    ::signal(SIGPIPE, SIG_IGN);
    std::size_t written = 0;
    while (written < input.size()) {
        const ssize_t count = ::write(inPipe[1], input.data() + written, input.size() - written);
        if (count <= 0) {
            break;
        }
        written += static_cast<std::size_t>(count);
    }
    ::close(inPipe[1]);
}

ChildProcess::~ChildProcess() {
    Kill();
    for (int fd : {outFd, errFd}) {
        if (fd >= 0) {
            ::close(fd);
        }
    }
}

void ChildProcess::Kill() {
    if (exitCode || pid <= 0) {
        return;
    }
    ::kill(pid, SIGKILL);  // also ends a stopped process
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    exitCode = ExitCodeOf(status);
}

bool ChildProcess::Running() {
    if (exitCode || pid <= 0) {
        return false;
    }
    int status = 0;
    pid_t reaped;
    while ((reaped = ::waitpid(pid, &status, WNOHANG)) < 0 && errno == EINTR) {
    }
    if (reaped == pid) {
        exitCode = ExitCodeOf(status);
    }
    return !exitCode;
}

bool ChildProcess::Pump(std::chrono::steady_clock::time_point deadline) {
    pollfd fds[2];
    nfds_t count = 0;
    for (int fd : {outFd, errFd}) {
        if (fd >= 0) {
            fds[count++] = {fd, POLLIN, 0};
        }
    }
    if (count == 0) {
        return false;
    }
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) {
        return false;
    }
    const int ready = ::poll(fds, count, static_cast<int>(left.count()));
    if (ready < 0 && errno == EINTR) {
        return true;
    }
    if (ready <= 0) {
        return false;
    }
    for (nfds_t index = 0; index < count; ++index) {
        if ((fds[index].revents & (POLLIN | POLLHUP | POLLERR)) == 0) {
            continue;
        }
        char buffer[4096];
        const ssize_t read = ::read(fds[index].fd, buffer, sizeof buffer);
        int& fd = fds[index].fd == outFd ? outFd : errFd;
        std::string& text = fds[index].fd == outFd ? out : err;
        if (read > 0) {
            text.append(buffer, static_cast<std::size_t>(read));
        } else {
            ::close(fd);
            fd = -1;
        }
    }
    return true;
}

std::optional<std::string> ChildProcess::ReadLineUntil(
    const std::function<bool(const std::string&)>& accept, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    for (;;) {
        for (auto end = out.find('\n', lineStart); end != std::string::npos;
             end = out.find('\n', lineStart)) {
            std::string line = out.substr(lineStart, end - lineStart);
            lineStart = end + 1;
            if (accept(line)) {
                return line;
            }
        }
        if (!Pump(deadline)) {
            return std::nullopt;
        }
    }
}

void ChildProcess::Signal(int signal) {
    if (!exitCode) {
        ::kill(pid, signal);
    }
}

int ChildProcess::Wait(std::chrono::milliseconds limit) {
    if (exitCode) {
        return *exitCode;
    }
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while ((outFd >= 0 || errFd >= 0) && Pump(deadline)) {
    }
    if (outFd >= 0 || errFd >= 0) {
        return -1;  // still running at the deadline; the destructor kills it
    }
    // Both outputs ended: the child is exiting.
    int status = 0;
    ::waitpid(pid, &status, 0);
    exitCode = ExitCodeOf(status);
    return *exitCode;
}

RunResult RunProcess(const std::vector<std::string>& arguments, std::chrono::milliseconds limit,
                     const std::string& input) {
    ChildProcess child(arguments, input);
    RunResult result;
    result.exitCode = child.Wait(limit);
    result.out = child.Out();
    result.err = child.Err();
    return result;
}

}  // namespace Korvo::Testing

#pragma once

// A program run as a child process with its output captured, bounded in time, and killed and
// reaped whatever happened: by the destructor, and by the kernel if the test process dies first.

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Korvo::Testing {

/// Use it from the thread that created it: the kernel ties the child's life to that thread.
class ChildProcess {
public:
    /// Starts `arguments[0]` with the rest as its arguments; `input` is written to its standard
    /// input, which is then closed. Its standard error is captured too unless `captureErrors` is
    /// false (then it is this process's). Throws `std::runtime_error` when no process can be made;
    /// a program that cannot be run exits with code 127.
    explicit ChildProcess(const std::vector<std::string>& arguments, const std::string& input = "",
                          bool captureErrors = true);

    /// Kills the child if it still runs and reaps it.
    ~ChildProcess();

    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// The next line of standard output that satisfies `accept`, reading for at most `limit`;
    /// lines before it are skipped (and kept in `Out()`). Empty when none came in time or the
    /// output ended.
    std::optional<std::string> ReadLineUntil(const std::function<bool(const std::string&)>& accept,
                                             std::chrono::milliseconds limit);

    /// Sends `signal` to the child while it runs.
    void Signal(int signal);

    /// Kills it at once (SIGKILL: nothing is closed politely) and reaps it.
    void Kill();

    /// Whether it still runs (has neither exited nor died of a signal).
    bool Running();

    /// Its process id; -1 once reaped.
    int Pid() const { return exitCode ? -1 : static_cast<int>(pid); }

    /// Reads both outputs to their end and reaps the child, within `limit`; its exit code (128 +
    /// the signal when a signal ended it), or -1 after killing it when the limit passed first.
    int Wait(std::chrono::milliseconds limit);

    const std::string& Out() const noexcept { return out; }
    const std::string& Err() const noexcept { return err; }

private:
    // Reads what is available on the open outputs, waiting at most until `deadline`; false when
    // the deadline passed with nothing read or both outputs ended.
    bool Pump(std::chrono::steady_clock::time_point deadline);

    pid_t pid = -1;
    int outFd = -1;
    int errFd = -1;
    std::string out;
    std::string err;
    std::size_t lineStart = 0;  // where ReadLineUntil looks next in `out`
    std::optional<int> exitCode;
};

/// What a finished run printed and returned.
struct RunResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

/// Runs the program to its end (or kills it after `limit`, exit code -1).
RunResult RunProcess(const std::vector<std::string>& arguments, std::chrono::milliseconds limit,
                     const std::string& input = "");

}  // namespace Korvo::Testing

#pragma once

// tessel-sim run as a child process, so that a test can do to a real server what happens on air:
// kill it, freeze it, start another one on the same port.

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace Korvo::Testing {

/// One tessel-sim process. The destructor kills and reaps it whatever the test did, and the kernel
/// kills it if the test process dies first, so no test leaves a server behind.
///
/// Use it from the thread that created it: the kernel ties the child's life to that thread.
class SimulatorProcess {
public:
    /// Starts tessel-sim with `arguments` and waits, up to `limit`, until it has printed both
    /// endpoints. Without a "--commands" argument the ports are picked by the system
    /// ("--ephemeral"). Throws `std::runtime_error` when it cannot start or says nothing in time.
    explicit SimulatorProcess(std::vector<std::string> arguments = {},
                              std::chrono::milliseconds limit = std::chrono::seconds(30));

    /// Kills and reaps the process if it still runs.
    ~SimulatorProcess();

    SimulatorProcess(const SimulatorProcess&) = delete;
    SimulatorProcess& operator=(const SimulatorProcess&) = delete;

    /// The endpoints it printed, for example "tcp://127.0.0.1:41234".
    const std::string& CommandEndpoint() const { return commandEndpoint; }
    const std::string& NotificationEndpoint() const { return notificationEndpoint; }
    /// Its process id; -1 once killed.
    int Pid() const { return pid; }
    /// Whether it still runs (has neither exited nor died of a signal).
    bool Running();

    /// Kills it at once (SIGKILL: no socket is closed politely) and reaps it.
    void Kill();

    /// Freezes it (SIGSTOP): its sockets stay open and the kernel keeps accepting connections, but
    /// nothing answers, not even heartbeats. `Resume` (SIGCONT) lets it go on. Both return once
    /// the process has stopped or continued.
    void Freeze();
    void Resume();

    /// Sends signal `number` to it (SIGHUP restarts it; SIGUSR1 and SIGUSR2 take server 1 off
    /// the network and back). Any thread.
    void Signal(int number);

private:
    void AwaitChange(int options);

    pid_t pid = -1;
    int output = -1;  // the read end of the child's standard output
    std::string commandEndpoint;
    std::string notificationEndpoint;
};

}  // namespace Korvo::Testing

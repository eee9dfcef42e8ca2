#pragma once

// tessel-sim run as a child process, so that a test can do to a real server what happens on air:
// kill it, freeze it, start another one on the same port.

#include <chrono>
#include <string>
#include <vector>

#include "support/ChildProcess.h"

namespace Korvo::Testing {

/// One tessel-sim process, killed and reaped whatever the test did (see ChildProcess). Its
/// standard error is this process's. `Signal(SIGHUP)` restarts it; SIGUSR1 and SIGUSR2 take
/// server 1 off the network and back.
class SimulatorProcess : public ChildProcess {
public:
    /// Starts tessel-sim with `arguments` and waits, up to `limit`, until it has printed both
    /// endpoints. Without a "--commands" argument the ports are picked by the system
    /// ("--ephemeral"). Throws `std::runtime_error` when it cannot start or says nothing in time.
    explicit SimulatorProcess(std::vector<std::string> arguments = {},
                              std::chrono::milliseconds limit = std::chrono::seconds(30));

    /// The endpoints it printed, for example "tcp://127.0.0.1:41234".
    const std::string& CommandEndpoint() const { return commandEndpoint; }
    const std::string& NotificationEndpoint() const { return notificationEndpoint; }

    /// Freezes it (SIGSTOP): its sockets stay open and the kernel keeps accepting connections, but
    /// nothing answers, not even heartbeats. `Resume` (SIGCONT) lets it go on. Both return once
    /// the process has stopped or continued.
    void Freeze();
    void Resume();

private:
    void AwaitChange(int options);

    std::string commandEndpoint;
    std::string notificationEndpoint;
};

}  // namespace Korvo::Testing

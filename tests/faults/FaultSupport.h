#pragma once

// What the fault tests share: a command client with the data builders over the ZeroMQ messenger,
// transport settings that notice faults quickly, the bytes of a notification and a record of its
// deliveries, and what a process uses, read from /proc.
// Bounded waits (`Eventually`, `kPatience`) come from support/Waiting.h.

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "support/RecordingLogger.h"
#include "support/SimulatorSession.h"
#include "support/ZmqPeers.h"

namespace Korvo::Testing {

using Common::Messaging::TransportOptions;
using Pending = Plexis::Tessel::Client::PendingCommandReply;
using Kind = Pending::ItemKind;

/// The library's settings with shorter heartbeats and retries, so that a dead or frozen server
/// shows within about a second and a returning one is reached again within half a second.
inline TransportOptions QuickOptions() {
    TransportOptions options;
    options.heartbeatInterval = std::chrono::milliseconds(250);
    options.heartbeatTimeout = std::chrono::milliseconds(1500);
    options.reconnectIntervalMax = std::chrono::milliseconds(500);
    options.connectTimeout = std::chrono::milliseconds(2000);
    return options;
}

/// A command client with the data builders connected to `endpoint` (not waited for); its link's
/// state changes go to `states` when given.
std::unique_ptr<CommandClient> DataClientTo(const std::string& endpoint,
                                            const TransportOptions& options = QuickOptions(),
                                            StateLog* states = nullptr);

/// Waits until `client`'s link is up; false after `limit`.
bool AwaitConnected(const CommandClient& client, std::chrono::milliseconds limit = kPatience);

/// A ping with a fresh command identifier. Any thread.
inline Commands::PingCommandParams Ping() {
    static std::atomic<long> counter{0};
    Commands::PingCommandParams params;
    params.commandGuid = Plexis::Data::Guid("fault-test-ping-" + std::to_string(++counter));
    return params;
}

/// Whether a ping sent on `client` is answered with a success for that very ping within `limit`.
bool PingAnswered(CommandClient& client, std::chrono::milliseconds limit = kPatience);


/// The payload of "server `id` added", its name padded to at least `nameBytes`.
std::string ServerAdded(int id, std::size_t nameBytes = 0);

/// The ids of the "server added" notifications a client delivered, in order.
class Deliveries {
public:
    /// Adds the recording callback to `client`'s list.
    void Attach(Plexis::Tessel::Client::NotificationClient& client);

    void Add(int id);
    bool WaitFor(const std::function<bool(const std::vector<int>&)>& condition,
                 std::chrono::milliseconds limit = kPatience);
    bool WaitForId(int id, std::chrono::milliseconds limit = kPatience);
    std::size_t Count();

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<int> ids;
};

/// How long each hostile peer of the attack tests keeps going: KORVO_ATTACK_SECONDS when set
/// (scripts/soak.sh sets 60), otherwise 2 seconds, which is what CI runs.
std::chrono::milliseconds AttackDuration();

/// The resident set of process `pid` (0: this process) in bytes, from /proc; 0 when unreadable.
long long ResidentBytes(int pid = 0);

/// The CPU time (user + system) process `pid` (0: this process) has used so far, from /proc.
std::chrono::milliseconds CpuTime(int pid = 0);

/// The number of threads of process `pid` (0: this process), from /proc.
int ThreadCount(int pid = 0);

/// The hard cap on resident memory that an attacked process must stay under: 256 MiB.
inline constexpr long long kResidentCap = 256LL << 20;

/// Whether this is a sanitizer build. There a tessel-sim process is several times slower, so a
/// peer that floods it leaves a backlog that outlasts any sensible wait, and AddressSanitizer's
/// quarantine keeps 256 MiB of freed memory resident: the attacks on a simulator process measure
/// nothing there and run in the default build only.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif

}  // namespace Korvo::Testing

#pragma once

// What the fault tests share: a command client with the data builders over the ZeroMQ messenger,
// transport settings that notice faults quickly, and bounded waits.

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

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

/// Checks `condition` until it holds, at most `limit`; whether it did. For what no event tells,
/// such as a count in a log.
bool Eventually(const std::function<bool()>& condition,
                std::chrono::milliseconds limit = kPatience);

/// How many records of `log` contain `text`.
int CountLogged(const RecordingLogger& log, const std::string& text);

}  // namespace Korvo::Testing

#pragma once

// The tool's connection to one server: where it is, how long to wait, and the one `Connection` it
// sends every command through, made on first use and connected before the first command is sent.

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <Korvo/Common/Messaging/EndPoint.h>
#include <Korvo/Plexis/Tessel/Client/Connection.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

#include "Errors.h"

namespace Korvo::Plexis::Tessel::Cli {

/// Where the server is and how long to wait for it.
struct ConnectionSettings {
    std::string commandEndpoint = "tcp://127.0.0.1:5555";
    std::string notificationEndpoint = "tcp://127.0.0.1:5556";
    /// The server's CURVE public key (Z85 or hex); applied to both endpoints when set.
    std::string serverKey;
    /// How long to wait for the link to come up, and then for each message of a reply.
    std::chrono::milliseconds timeout{5000};

    /// The endpoints with the key applied. Throw `CliError` (Usage) for a malformed text.
    Common::Messaging::EndPoint CommandEndPoint() const;
    Common::Messaging::EndPoint NotificationEndPoint() const;
};

/// "channel" or "data": the builders that serve the command named `commandName`. Throws
/// `CliError` (Usage) for a name that no command has.
const char* FamilyOf(const std::string& commandName);

using Replies = std::vector<std::unique_ptr<HighLevelOperations::Commands::CommandReply>>;

/// The tool's one `Client::Connection` to the server, made and connected on first use, and the
/// waiting for a reply that a command line does: a message at a time, each within the time-out,
/// a signal noticed while waiting. One thread.
class Session {
public:
    /// Called with each message of a reply as it arrives, decoded, and whether it is the final.
    using ReplyConsumer = std::function<void(
        std::unique_ptr<HighLevelOperations::Commands::CommandReply> reply, bool final)>;
    /// Asked while waiting for a reply: the number of a signal that asks to stop, or 0.
    using Interruption = std::function<int()>;

    explicit Session(ConnectionSettings settings);
    ~Session();

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Sends `params` (the command `commandName`) and hands every message of its reply to
    /// `consume` as it arrives, parts first, the final one last; nothing is kept here. Connects
    /// first when needed. Throws `CliError`: NoServer when the link does not come up within the
    /// time-out (the message says whether nothing listens there or the handshake failed), Local
    /// when the link cannot be created at all, TimedOut when a reply message does not come within
    /// the time-out, BadReply when a reply cannot be decoded or the link fails, BadInput when the
    /// parameters cannot be converted for the wire, and 128 + the signal when `interrupted`
    /// reports one (checked at least every 100 ms while waiting). What `consume` throws passes,
    /// after the command is cancelled.
    void Call(const std::string& commandName,
              const HighLevelOperations::Commands::CommandParams& params,
              const ReplyConsumer& consume, const Interruption& interrupted = {});

    /// `Call` that gathers and returns every message of the reply: for replies known to be small.
    Replies Call(const std::string& commandName,
                 const HighLevelOperations::Commands::CommandParams& params);

    /// The connection, its command link up. Throws `CliError` as `Call` does for the link.
    Client::Connection& Connected();

    const ConnectionSettings& GetSettings() const noexcept { return settings; }

    /// The `CliError` for an operation that ended otherwise than `Replied`.
    CliError Failure(const std::string& commandName, Client::Outcome outcome,
                     const std::string& reason) const;

private:
    ConnectionSettings settings;
    std::unique_ptr<Client::Connection> connection;
};

/// A copy of `reply`, of its own class.
std::unique_ptr<HighLevelOperations::Commands::CommandReply> CopyReply(
    const HighLevelOperations::Commands::CommandReply& reply);

/// Why the link to `endpoint` did not come up within `timeout`, and what to do: nothing listens
/// at the address (refused, or the name does not resolve), or something listens but the
/// handshake did not complete (a wrong or missing --server-key). Tries one plain connection to
/// the address, waiting at most a second. `option` names the option that gave the endpoint.
std::string LinkFailureText(const Common::Messaging::EndPoint& endpoint,
                            std::chrono::milliseconds timeout, const char* option);

/// The text of a duration for messages: "5 s", "0.5 s".
std::string SecondsText(std::chrono::milliseconds duration);

}  // namespace Korvo::Plexis::Tessel::Cli

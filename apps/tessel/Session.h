#pragma once

// The tool's connection to one server: where it is, how long to wait, and one command client per
// builder family, made on first use and connected before the first command is sent.

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <Korvo/Common/Messaging/EndPoint.h>
#include <Korvo/Plexis/Tessel/Client/CommandClient.h>
#include <Korvo/Plexis/Tessel/Client/CommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/CommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

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

/// One family of commands: the payload and reply builders that serve its names.
struct CommandFamily {
    const char* name;  ///< "channel" or "data"
    std::shared_ptr<Client::CommandParamsPayloadBuilder> (*makePayloadBuilder)();
    std::shared_ptr<Client::CommandReplyBuilder> (*makeReplyBuilder)();
};

/// The family of the command named `commandName`, as the command table gives it. Throws
/// `CliError` (Usage) for a name that no command has.
const CommandFamily& FamilyOf(const std::string& commandName);

using Replies = std::vector<std::unique_ptr<HighLevelOperations::Commands::CommandReply>>;

/// Sends commands over one command client per family and hands their replies on. One thread.
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

    /// Sends `commandName` with `params` and hands every message of its reply to `consume` as it
    /// arrives, parts first, the final one last; nothing is kept here. Connects first when
    /// needed. Throws `CliError`: NoServer when the link does not come up within the time-out
    /// (the message says whether nothing listens there or the handshake failed), Local when the
    /// link cannot be created at all, TimedOut when a reply message does not come within the
    /// time-out, BadReply when a reply cannot be decoded or the link fails, BadInput when the
    /// parameters cannot be converted for the wire, and 128 + the signal when `interrupted`
    /// reports one (checked at least every 100 ms while waiting). What `consume` throws passes.
    void Call(const std::string& commandName,
              const HighLevelOperations::Commands::CommandParams& params,
              const ReplyConsumer& consume, const Interruption& interrupted = {});

    /// `Call` that gathers and returns every message of the reply: for replies known to be small.
    Replies Call(const std::string& commandName,
                 const HighLevelOperations::Commands::CommandParams& params);

    /// Connects the client that `commandName` goes through, when not yet connected. Throws
    /// `CliError` like `Call`.
    void Connect(const std::string& commandName,
                 const HighLevelOperations::Commands::CommandParams& params);

    const ConnectionSettings& GetSettings() const noexcept { return settings; }

private:
    Client::CommandClient& ClientOf(const CommandFamily& family);

    ConnectionSettings settings;
    std::map<const CommandFamily*, std::unique_ptr<Client::CommandClient>> clients;
};

/// Why the link to `endpoint` did not come up within `timeout`, and what to do: nothing listens
/// at the address (refused, or the name does not resolve), or something listens but the
/// handshake did not complete (a wrong or missing --server-key). Tries one plain connection to
/// the address, waiting at most a second. `option` names the option that gave the endpoint.
std::string LinkFailureText(const Common::Messaging::EndPoint& endpoint,
                            std::chrono::milliseconds timeout, const char* option);

/// The text of a duration for messages: "5 s", "0.5 s".
std::string SecondsText(std::chrono::milliseconds duration);

}  // namespace Korvo::Plexis::Tessel::Cli

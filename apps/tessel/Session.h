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

/// The family whose payload builder knows `commandName`; `params` must be of the class the name
/// implies (as `Json::CommandParamsFromJson` makes it). Throws `CliError` (Usage) for a name that
/// no family knows.
const CommandFamily& FamilyOf(const std::string& commandName,
                              const HighLevelOperations::Commands::CommandParams& params);

using Replies = std::vector<std::unique_ptr<HighLevelOperations::Commands::CommandReply>>;

/// Sends commands over one command client per family and gathers their replies. One thread.
class Session {
public:
    /// Called with each message of a reply as it arrives: the reply and whether it is the final.
    using ReplyObserver =
        std::function<void(const HighLevelOperations::Commands::CommandReply&, bool final)>;

    explicit Session(ConnectionSettings settings);
    ~Session();

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Sends `commandName` with `params` and returns every message of its reply, parts first, the
    /// final one last. Connects first when needed. Throws `CliError`: NoServer when the link does
    /// not come up within the time-out, TimedOut when a reply message does not come within it,
    /// BadReply when a reply cannot be decoded or the link fails, BadInput when the parameters
    /// cannot be converted for the wire.
    Replies Call(const std::string& commandName,
                 const HighLevelOperations::Commands::CommandParams& params,
                 const ReplyObserver& observer = {});

    /// Connects the client that `commandName` goes through, when not yet connected. Throws
    /// `CliError` (NoServer) like `Call`.
    void Connect(const std::string& commandName,
                 const HighLevelOperations::Commands::CommandParams& params);

    const ConnectionSettings& GetSettings() const noexcept { return settings; }

private:
    Client::CommandClient& ClientOf(const CommandFamily& family);

    ConnectionSettings settings;
    std::map<const CommandFamily*, std::unique_ptr<Client::CommandClient>> clients;
};

/// The text of a duration for messages: "5 s", "0.5 s".
std::string SecondsText(std::chrono::milliseconds duration);

}  // namespace Korvo::Plexis::Tessel::Cli

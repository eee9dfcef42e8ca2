#include "Session.h"

#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <optional>
#include <stdexcept>

#include <Korvo/Plexis/Tessel/Client/ZmqMessenger.h>
#include <Korvo/Plexis/Tessel/Client/ChannelCommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/Client/ChannelsCommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandReplyBuilder.h>

#include "Errors.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Messaging = Common::Messaging;
using HighLevelOperations::Commands::CommandParams;

namespace {

template <class Builder, class Base>
std::shared_ptr<Base> Make() {
    return std::make_shared<Builder>();
}

// The two families, in the order they are asked whether they know a name. The builders' own
// tables decide: a name belongs to the family whose payload builder accepts it.
const CommandFamily kFamilies[] = {
    {"channel",
     &Make<Client::ChannelsCommandParamsPayloadBuilder, Client::CommandParamsPayloadBuilder>,
     &Make<Client::ChannelCommandReplyBuilder, Client::CommandReplyBuilder>},
    {"data", &Make<Client::DataCommandParamsPayloadBuilder, Client::CommandParamsPayloadBuilder>,
     &Make<Client::DataCommandReplyBuilder, Client::CommandReplyBuilder>},
};

constexpr const char* kUnknownCommand = "Unknown command type.";

Messaging::EndPoint WithKey(const std::string& text, const std::string& key) {
    std::optional<Messaging::EndPoint> endpoint;
    try {
        endpoint.emplace(text);
    } catch (const std::invalid_argument& error) {
        throw CliError(ExitCode::Usage, "bad endpoint \"" + text + "\": " + error.what());
    }
    if (key.empty()) {
        return *endpoint;
    }
    try {
        return Messaging::EndPoint(endpoint->Address(), key);
    } catch (const std::invalid_argument& error) {
        throw CliError(ExitCode::Usage,
                       std::string("bad server key (--server-key): ") + error.what());
    }
}

// What one plain connection attempt to an address found.
struct ProbeResult {
    enum Kind { Listening, Refused, Unknown } kind = Unknown;
    std::string detail;  // the system's reason when not listening
};

// Waits at most `limit` for a non-blocking connect of `fd` to `address`.
ProbeResult ConnectWithin(int fd, const sockaddr* address, socklen_t length,
                          std::chrono::milliseconds limit) {
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    int error = 0;
    if (::connect(fd, address, length) != 0) {
        error = errno;
        if (error == EINPROGRESS) {
            pollfd waiting{fd, POLLOUT, 0};
            if (::poll(&waiting, 1, static_cast<int>(limit.count())) != 1) {
                return {ProbeResult::Unknown, "no answer to a connection attempt"};
            }
            socklen_t size = sizeof error;
            ::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &size);
        }
    }
    if (error == 0) {
        return {ProbeResult::Listening, ""};
    }
    const bool refused = error == ECONNREFUSED || error == ENOENT;
    return {refused ? ProbeResult::Refused : ProbeResult::Unknown, std::strerror(error)};
}

ProbeResult Probe(const std::string& address, std::chrono::milliseconds limit) {
    if (address.rfind("ipc://", 0) == 0) {
        sockaddr_un local{};
        local.sun_family = AF_UNIX;
        const std::string path = address.substr(6);
        if (path.size() >= sizeof local.sun_path) {
            return {};
        }
        std::copy(path.begin(), path.end(), local.sun_path);
        const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (fd < 0) {
            return {};
        }
        const auto result =
            ConnectWithin(fd, reinterpret_cast<const sockaddr*>(&local), sizeof local, limit);
        ::close(fd);
        return result;
    }
    if (address.rfind("tcp://", 0) != 0) {
        return {};
    }
    const std::string hostPort = address.substr(6);
    const auto colon = hostPort.rfind(':');
    if (colon == std::string::npos) {
        return {};
    }
    std::string host = hostPort.substr(0, colon);
    if (host.size() >= 2 && host.front() == '[' && host.back() == ']') {
        host = host.substr(1, host.size() - 2);
    }
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int status =
        ::getaddrinfo(host.c_str(), hostPort.substr(colon + 1).c_str(), &hints, &found);
    if (status != 0) {
        return {ProbeResult::Refused,
                "the host name \"" + host + "\" does not resolve: " + ::gai_strerror(status)};
    }
    ProbeResult result;
    for (const addrinfo* entry = found; entry != nullptr; entry = entry->ai_next) {
        const int fd = ::socket(entry->ai_family, entry->ai_socktype | SOCK_CLOEXEC, 0);
        if (fd < 0) {
            continue;
        }
        result = ConnectWithin(fd, entry->ai_addr, entry->ai_addrlen, limit);
        ::close(fd);
        if (result.kind == ProbeResult::Listening) {
            break;
        }
    }
    ::freeaddrinfo(found);
    return result;
}

// The link state of one messenger, as its handler reports it, for a wait without polling.
struct LinkState {
    std::mutex mutex;
    std::condition_variable changed;
    Messaging::ConnectionState state = Messaging::ConnectionState::Connecting;
};

}  // namespace

std::string LinkFailureText(const Messaging::EndPoint& endpoint, std::chrono::milliseconds timeout,
                            const char* option) {
    const std::string& address = endpoint.Address();
    const ProbeResult probe =
        Probe(address, std::min<std::chrono::milliseconds>(timeout, std::chrono::seconds(1)));
    switch (probe.kind) {
        case ProbeResult::Refused:
            return "no server at " + address + " (" + probe.detail +
                   "): start the server, or give its address with " + option;
        case ProbeResult::Listening:
            if (endpoint.IsEncrypted()) {
                return "the server at " + address +
                       " accepts connections but the encrypted "
                       "handshake did not complete within " +
                       SecondsText(timeout) +
                       ": check --server-key (the server's public key), or leave it out if the "
                       "server does not encrypt";
            }
            return "the server at " + address +
                   " accepts connections but the handshake did not "
                   "complete within " +
                   SecondsText(timeout) +
                   ": it may require encryption (give its public key with --server-key), or it "
                   "is not a replay server";
        case ProbeResult::Unknown:
            break;
    }
    return "no server at " + address + ": the link did not come up within " + SecondsText(timeout) +
           (probe.detail.empty() ? "" : " (" + probe.detail + ")") + "; check " + option +
           " and the network, or give it longer with --timeout";
}

std::string SecondsText(std::chrono::milliseconds duration) {
    char text[32];
    std::snprintf(text, sizeof text, "%g s", static_cast<double>(duration.count()) / 1000.0);
    return text;
}

Messaging::EndPoint ConnectionSettings::CommandEndPoint() const {
    return WithKey(commandEndpoint, serverKey);
}

Messaging::EndPoint ConnectionSettings::NotificationEndPoint() const {
    return WithKey(notificationEndpoint, serverKey);
}

const CommandFamily& FamilyOf(const std::string& commandName, const CommandParams& params) {
    for (const CommandFamily& family : kFamilies) {
        try {
            family.makePayloadBuilder()->BuildPayload(commandName, params);
            return family;
        } catch (const std::invalid_argument& error) {
            if (std::string(error.what()) != kUnknownCommand) {
                return family;  // the name is known; the parameters are refused when sent
            }
        } catch (const std::exception&) {
            return family;
        }
    }
    throw CliError(ExitCode::Usage, "unknown command \"" + commandName + "\"");
}

Session::Session(ConnectionSettings settings) : settings(std::move(settings)) {}

Session::~Session() = default;

Client::CommandClient& Session::ClientOf(const CommandFamily& family) {
    auto& client = clients[&family];
    if (client) {
        return *client;
    }
    const Messaging::EndPoint endpoint = settings.CommandEndPoint();
    auto link = std::make_shared<LinkState>();
    std::unique_ptr<Client::CommandClient> made;
    try {
        auto messenger = std::make_unique<Client::ZmqMessenger>(
            endpoint, Messaging::TransportOptions{}, [link](Messaging::ConnectionState state) {
                std::lock_guard<std::mutex> lock(link->mutex);
                link->state = state;
                link->changed.notify_all();
            });
        made = std::make_unique<Client::CommandClient>(
            std::move(messenger), family.makePayloadBuilder(), family.makeReplyBuilder());
    } catch (const std::exception& error) {
        throw CliError(ExitCode::Local,
                       "cannot open the link to " + endpoint.Address() + ": " + error.what());
    }
    // A command sent on a link that is not up is dropped; wait for the link instead.
    std::unique_lock<std::mutex> lock(link->mutex);
    const bool up = link->changed.wait_for(lock, settings.timeout, [&] {
        return link->state == Messaging::ConnectionState::Connected;
    });
    lock.unlock();
    if (!up) {
        throw CliError(ExitCode::NoServer,
                       LinkFailureText(endpoint, settings.timeout, "--commands"));
    }
    client = std::move(made);
    return *client;
}

void Session::Connect(const std::string& commandName, const CommandParams& params) {
    ClientOf(FamilyOf(commandName, params));
}

void Session::Call(const std::string& commandName, const CommandParams& params,
                   const ReplyConsumer& consume, const Interruption& interrupted) {
    Client::CommandClient& client = ClientOf(FamilyOf(commandName, params));
    std::unique_ptr<Client::PendingCommandReply> pending;
    try {
        pending = client.Request(commandName, params);
    } catch (const std::exception& error) {
        throw CliError(ExitCode::BadInput,
                       commandName + ": the parameters cannot be sent: " + error.what());
    }
    if (!pending) {
        throw CliError(ExitCode::BadReply, commandName + ": the command could not be sent to " +
                                               settings.CommandEndPoint().Address());
    }
    using Kind = Client::PendingCommandReply::ItemKind;
    // Waits in slices so that a signal is seen promptly; each message has the whole time-out.
    constexpr std::chrono::milliseconds kSlice{100};
    std::size_t received = 0;
    auto deadline = std::chrono::steady_clock::now() + settings.timeout;
    while (pending->IsPending()) {
        if (const int signal = interrupted ? interrupted() : 0) {
            throw CliError(static_cast<ExitCode>(128 + signal),
                           commandName + ": interrupted after " + std::to_string(received) +
                               (received == 1 ? " reply message" : " reply messages"));
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        auto item = pending->Next(std::clamp(left, std::chrono::milliseconds(0), kSlice));
        if (item.kind == Kind::TimedOut) {
            if (left > kSlice) {
                continue;
            }
            throw CliError(
                ExitCode::TimedOut,
                "no reply to " + commandName + " within " + SecondsText(settings.timeout) +
                    (received == 0 ? "" : " after " + std::to_string(received) + " parts") +
                    ": the link is up but the server did not answer in time; it may be busy, "
                    "or give it longer with --timeout");
        }
        if (item.kind == Kind::Cancelled) {
            throw CliError(ExitCode::BadReply,
                           commandName + ": the link failed while waiting for the reply");
        }
        if (item.kind == Kind::NotSent) {
            throw CliError(ExitCode::BadReply,
                           commandName + ": not sent: the link to " +
                               settings.CommandEndPoint().Address() +
                               " is down; the command did not run and may be sent again");
        }
        if (item.kind == Kind::LinkLost) {
            throw CliError(ExitCode::BadReply,
                           commandName + ": the link to " + settings.CommandEndPoint().Address() +
                               " was lost before the reply; the command may have run");
        }
        if (item.kind == Kind::Overflowed) {
            throw CliError(ExitCode::BadReply,
                           commandName + ": the replies outgrew the client's budget and were "
                                         "dropped; the command may have run");
        }
        std::unique_ptr<HighLevelOperations::Commands::CommandReply> reply;
        try {
            reply = pending->BuildReply(item);
        } catch (const std::exception& error) {
            throw CliError(ExitCode::BadReply, commandName + ": the reply (" +
                                                   item.message->GetHeader() +
                                                   ") cannot be decoded: " + error.what());
        }
        ++received;
        deadline = std::chrono::steady_clock::now() + settings.timeout;
        consume(std::move(reply), item.kind == Kind::Final);
    }
}

Replies Session::Call(const std::string& commandName, const CommandParams& params) {
    Replies replies;
    Call(commandName, params,
         [&replies](std::unique_ptr<HighLevelOperations::Commands::CommandReply> reply, bool) {
             replies.push_back(std::move(reply));
         });
    return replies;
}

}  // namespace Korvo::Plexis::Tessel::Cli

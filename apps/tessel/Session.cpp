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
#include <deque>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <typeinfo>

#include <Korvo/Plexis/Tessel/Client/CommandTypes.h>

namespace Korvo::Plexis::Tessel::Cli {

namespace Messaging = Common::Messaging;
namespace Commands = HighLevelOperations::Commands;
using Commands::CommandParams;

namespace {

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

const char* FamilyOf(const std::string& commandName) {
    const auto family = Client::FamilyOfCommand(commandName);
    if (!family) {
        throw CliError(ExitCode::Usage, "unknown command \"" + commandName + "\"");
    }
    return *family == Client::CommandFamily::Channel ? "channel" : "data";
}

std::unique_ptr<Commands::CommandReply> CopyReply(const Commands::CommandReply& reply) {
    std::unique_ptr<Commands::CommandReply> copy;
    Client::ForEachReply([&](auto* type) {
        using Reply = std::remove_pointer_t<decltype(type)>;
        if (!copy && typeid(reply) == typeid(Reply)) {
            copy = std::make_unique<Reply>(static_cast<const Reply&>(reply));
        }
    });
    if (!copy) {
        throw std::invalid_argument("a reply of a class no command receives");
    }
    return copy;
}

namespace {

// What the connection's callback thread hands to the thread that waits for a reply: the parts as
// they come, then the end.
struct Exchange {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::unique_ptr<Commands::CommandReply>> parts;
    bool done = false;

    void Add(std::unique_ptr<Commands::CommandReply> part) {
        std::lock_guard<std::mutex> lock(mutex);
        parts.push_back(std::move(part));
        changed.notify_all();
    }
    void End() {
        std::lock_guard<std::mutex> lock(mutex);
        done = true;
        changed.notify_all();
    }
};

// The time limit given to the connection: the tool keeps its own, per message, and cancels.
constexpr std::chrono::hours kNoLimit{48};

// A sent command of any class, seen through what waiting for it needs.
struct Sent {
    std::function<Client::Outcome()> outcome;
    std::function<const Commands::CommandReply*()> reply;
    std::function<std::string()> reason;
    std::function<void()> cancel;
};

template <class Params>
Sent SendTyped(Client::Connection& connection, const Params& params,
               const std::shared_ptr<Exchange>& exchange) {
    Client::CallOptions<Params> options;
    options.timeLimit = kNoLimit;
    options.onPart = [exchange](const typename Client::CommandTraits<Params>::Reply& part) {
        exchange->Add(std::make_unique<typename Client::CommandTraits<Params>::Reply>(part));
    };
    options.onDone = [exchange](const Client::Operation<Params>&) { exchange->End(); };
    const auto operation = connection.Send(params, std::move(options));
    return {[operation] { return operation.GetOutcome(); },
            [operation] { return operation.GetReply(); },
            [operation] { return operation.Reason(); }, [operation] { operation.Cancel(); }};
}

}  // namespace

Session::Session(ConnectionSettings settings) : settings(std::move(settings)) {}

Session::~Session() = default;

Client::Connection& Session::Connected() {
    if (connection) {
        return *connection;
    }
    const Messaging::EndPoint endpoint = settings.CommandEndPoint();
    Client::ConnectionOptions options;
    options.commandEndPoint = endpoint.ToString();
    options.timeLimit = settings.timeout;
    std::unique_ptr<Client::Connection> made;
    try {
        made = std::make_unique<Client::Connection>(std::move(options));
    } catch (const std::exception& error) {
        throw CliError(ExitCode::Local,
                       "cannot open the link to " + endpoint.Address() + ": " + error.what());
    }
    // A command sent on a link that is not up is not sent; wait for the link instead.
    if (!made->WaitConnected(settings.timeout)) {
        throw CliError(ExitCode::NoServer,
                       LinkFailureText(endpoint, settings.timeout, "--commands"));
    }
    connection = std::move(made);
    return *connection;
}

CliError Session::Failure(const std::string& commandName, Client::Outcome outcome,
                          const std::string& reason) const {
    const std::string address = settings.CommandEndPoint().Address();
    const std::string because = reason.empty() ? "" : " (" + reason + ")";
    switch (outcome) {
        case Client::Outcome::NotSent:
            return CliError(ExitCode::BadReply,
                            commandName + ": not sent: the link to " + address + " is down" +
                                because + "; the command did not run and may be sent again");
        case Client::Outcome::LinkLost:
            return CliError(ExitCode::BadReply, commandName + ": the link to " + address +
                                                    " was lost before the reply; the command "
                                                    "may have run");
        case Client::Outcome::TimedOut:
            return CliError(ExitCode::TimedOut, "no reply to " + commandName + " within " +
                                                    SecondsText(settings.timeout));
        case Client::Outcome::BadReply:
            return CliError(ExitCode::BadReply,
                            commandName + ": the reply cannot be used" + because +
                                "; the command may have run");
        default:
            return CliError(ExitCode::BadReply,
                            commandName + ": the link failed while waiting for the reply" +
                                because);
    }
}

void Session::Call(const std::string& commandName, const CommandParams& params,
                   const ReplyConsumer& consume, const Interruption& interrupted) {
    Client::Connection& link = Connected();
    const auto exchange = std::make_shared<Exchange>();
    std::optional<Sent> sent;
    try {
        Client::ForEachCommand([&](auto* type) {
            using Params = std::remove_pointer_t<decltype(type)>;
            if (!sent && typeid(params) == typeid(Params)) {
                sent = SendTyped(link, static_cast<const Params&>(params), exchange);
            }
        });
    } catch (const std::exception& error) {
        throw CliError(ExitCode::BadInput,
                       commandName + ": the parameters cannot be sent: " + error.what());
    }
    if (!sent) {
        throw CliError(ExitCode::Usage, "unknown command \"" + commandName + "\"");
    }
    // Waits in slices so that a signal is seen promptly; each message has the whole time-out.
    constexpr std::chrono::milliseconds kSlice{100};
    std::size_t received = 0;
    auto deadline = std::chrono::steady_clock::now() + settings.timeout;
    std::unique_lock<std::mutex> lock(exchange->mutex);
    try {
        while (true) {
            if (!exchange->parts.empty()) {
                auto part = std::move(exchange->parts.front());
                exchange->parts.pop_front();
                lock.unlock();
                ++received;
                consume(std::move(part), false);
                deadline = std::chrono::steady_clock::now() + settings.timeout;
                lock.lock();
                continue;
            }
            if (exchange->done) {
                break;
            }
            if (const int signal = interrupted ? interrupted() : 0) {
                throw CliError(static_cast<ExitCode>(128 + signal),
                               commandName + ": interrupted after " + std::to_string(received) +
                                   (received == 1 ? " reply message" : " reply messages"));
            }
            const auto now = std::chrono::steady_clock::now();
            if (now >= deadline) {
                throw CliError(
                    ExitCode::TimedOut,
                    "no reply to " + commandName + " within " + SecondsText(settings.timeout) +
                        (received == 0 ? "" : " after " + std::to_string(received) + " parts") +
                        ": the link is up but the server did not answer in time; it may be "
                        "busy, or give it longer with --timeout");
            }
            exchange->changed.wait_until(lock, std::min(deadline, now + kSlice));
        }
    } catch (...) {
        if (lock.owns_lock()) {
            lock.unlock();
        }
        sent->cancel();
        throw;
    }
    lock.unlock();
    const Client::Outcome outcome = sent->outcome();
    if (outcome != Client::Outcome::Replied) {
        throw Failure(commandName, outcome, sent->reason());
    }
    consume(CopyReply(*sent->reply()), true);
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

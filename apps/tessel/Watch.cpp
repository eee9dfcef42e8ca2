// `tessel watch`: notifications as they arrive, until a signal or a count ends it.

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <fstream>
#include <type_traits>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <iostream>
#include <memory>
#include <mutex>
#include <thread>

#include <Korvo/Plexis/Tessel/Client/NotificationClient.h>
#include <Korvo/Plexis/Tessel/Client/NotificationTypes.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PingCommandParams.h>

#include "Errors.h"
#include "Notifications.h"
#include "Text.h"
#include "Tool.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Messaging = Common::Messaging;

namespace {

// Whether standard output is a pipe whose reader has gone (poll reports an error on it).
bool StandardOutputGone() {
    pollfd output{STDOUT_FILENO, 0, 0};
    return ::poll(&output, 1, 0) == 1 && (output.revents & (POLLERR | POLLHUP | POLLNVAL)) != 0;
}

// Says that the watch is subscribed, once the server has answered a ping after the handshake.
void Ready(const ConnectionSettings& settings, const Messaging::EndPoint& endpoint,
           const std::string& topicText, const std::string& readyFile, std::ostream& err) {
    std::string probe;
    try {
        Session session(settings);
        session.Call("PingCommand", NewParams<HighLevelOperations::Commands::PingCommandParams>());
    } catch (const CliError& error) {
        probe = " (no ping answered on the command endpoint: " + std::string(error.what()) +
                "; ready by handshake only)";
    }
    err << "tessel: ready: subscribed to " << endpoint.Address() << " ("
        << (topicText.empty() ? "all topics" : topicText) << ")" << Printable(probe) << '\n'
        << std::flush;
    if (!readyFile.empty()) {
        errno = 0;
        std::ofstream file(readyFile, std::ios::trunc);
        file << "ready\n" << std::flush;
        if (!file) {
            throw CliError(ExitCode::Local, "cannot write the ready file " + readyFile + ": " +
                                                (errno != 0 ? std::strerror(errno) : "failed"));
        }
    }
}

}  // namespace

void ParseWatchTopics(const std::vector<std::string>& arguments, WatchRequest& request) {
    for (const auto& argument : arguments) {
        const auto slash = argument.find('/');
        const std::string name = argument.substr(0, slash);
        const std::string server = slash == std::string::npos ? "" : argument.substr(slash);
        std::string family;
        std::string families;
        std::string types;
        Client::ForEachNotification([&](auto* type) {
            using Traits = Client::NotificationTraits<std::remove_pointer_t<decltype(type)>>;
            const std::string familyName(Traits::kFamilyName);
            if (families.find(familyName) == std::string::npos) {
                families += (families.empty() ? "" : ", ") + familyName;
            }
            types += (types.empty() ? "" : ", ") + std::string(Traits::kName);
            if (name == familyName) {
                family = familyName;
            } else if (name == Traits::kName) {
                family = familyName;
                request.types.insert(name);
            }
        });
        if (family.empty()) {
            throw CliError(ExitCode::Usage, "watch: unknown notification family or type \"" +
                                                name + "\"; the families are " + families +
                                                "; the types are " + types);
        }
        request.topics.push_back(family + server);
    }
    if (!request.types.empty()) {
        // A family named whole keeps all of its types.
        for (const auto& argument : arguments) {
            const std::string name = argument.substr(0, argument.find('/'));
            Client::ForEachNotification([&](auto* type) {
                using Traits = Client::NotificationTraits<std::remove_pointer_t<decltype(type)>>;
                if (name == Traits::kFamilyName) {
                    request.types.insert(std::string(Traits::kName));
                }
            });
        }
    }
}

int Watch(const ConnectionSettings& settings, const WatchRequest& request, std::ostream& out,
          std::ostream& err) {
    const auto& topics = request.topics;
    const bool json = request.json;
    const auto& count = request.count;
    // A write to a pipe whose reader has gone fails (EPIPE) instead of killing the process: the
    // watch then ends with 0, as a reader such as head expects.
    std::signal(SIGPIPE, SIG_IGN);
    // SIGINT and SIGTERM are taken by one thread of ours; every thread started from here on
    // (the client's, ZeroMQ's) inherits the blocked mask, so the signal cannot land elsewhere.
    // The mask stays: the process ends after this returns, and a late signal must not kill it.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    std::mutex mutex;
    std::condition_variable changed;
    bool stop = false;
    bool connected = false;
    int writeError = -1;  // errno of a failed write to `out`, once one failed
    std::size_t printed = 0;

    // The client first: what throws here (a bad endpoint) leaves no thread of ours behind.
    const Messaging::EndPoint endpoint = settings.NotificationEndPoint();
    std::unique_ptr<Client::NotificationClient> client;
    try {
        client = std::make_unique<Client::NotificationClient>(
            std::vector<Messaging::EndPoint>{endpoint}, topics);
    } catch (const std::exception& error) {
        throw CliError(ExitCode::Local,
                       "cannot open the link to " + endpoint.Address() + ": " + error.what());
    }
    {
        auto handlersLock = client->LockHandlers();
        AttachDescriber(*client, [&](const NotificationLine& line) {
            if (!request.types.empty() && request.types.count(line.type) == 0) {
                return;
            }
            const std::string text = (json ? line.json : Printable(FormatLine(line))) + '\n';
            std::lock_guard<std::mutex> lock(mutex);
            if (stop) {
                return;
            }
            errno = 0;
            out << text << std::flush;  // the whole line in one piece
            if (!out) {
                writeError = errno;
                stop = true;
            } else if (count && ++printed >= *count) {
                stop = true;
            }
            if (stop) {
                changed.notify_all();
            }
        });
    }
    client->GetSubscription().SetConnectionStateHandler([&](const Messaging::EndPoint& from,
                                                            Messaging::ConnectionState state) {
        std::lock_guard<std::mutex> lock(mutex);
        if (state == Messaging::ConnectionState::Connected) {
            connected = true;
            changed.notify_all();
        }
        if (state == Messaging::ConnectionState::Connected ||
            state == Messaging::ConnectionState::Reconnecting) {
            err << "tessel: " << from.Address() << ": " << ToString(state) << '\n' << std::flush;
        }
    });
    for (const auto state : client->GetSubscription().GetConnectionStates()) {
        std::lock_guard<std::mutex> lock(mutex);
        connected = connected || state == Messaging::ConnectionState::Connected;
    }

    std::atomic<bool> signalled{false};
    std::thread signalTaker([&] {
        int signal = 0;
        sigwait(&signals, &signal);
        signalled = true;
        std::lock_guard<std::mutex> lock(mutex);
        stop = true;
        changed.notify_all();
    });
    std::string topicText;
    for (const auto& topic : topics) {
        topicText += (topicText.empty() ? "" : ", ") + topic;
    }
    bool linkFailed = false;
    {
        std::unique_lock<std::mutex> lock(mutex);
        err << "tessel: watching " << endpoint.Address() << " ("
            << (topicText.empty() ? "all topics" : topicText) << "); Ctrl-C to stop\n"
            << std::flush;
        // The link must come up within the time-out; after that the watch lasts.
        linkFailed = !changed.wait_for(lock, settings.timeout, [&] { return stop || connected; });
        if (!linkFailed && !stop) {
            lock.unlock();
            Ready(settings, endpoint, topicText, request.readyFile, err);
            lock.lock();
        }
        // A pipe whose reader has gone is noticed even while no notification comes.
        const bool pipeWatch = &out == &std::cout;
        while (!linkFailed && !stop) {
            changed.wait_for(lock, std::chrono::milliseconds(250));
            if (pipeWatch && StandardOutputGone()) {
                writeError = EPIPE;
                stop = true;
            }
        }
    }
    client->GetSubscription().SetConnectionStateHandler({});
    client.reset();
    // A count, a failure or the time-out ended the watch: wake the signal thread with a signal
    // of its own.
    if (!signalled) {
        pthread_kill(signalTaker.native_handle(), SIGTERM);
    }
    signalTaker.join();
    if (linkFailed) {
        throw CliError(ExitCode::NoServer,
                       LinkFailureText(endpoint, settings.timeout, "--notifications"));
    }
    if (writeError == EPIPE) {
        throw OutputClosed{};
    }
    if (writeError >= 0) {
        throw CliError(ExitCode::Local,
                       std::string("cannot write standard output: ") +
                           (writeError != 0 ? std::strerror(writeError) : "write failed"));
    }
    return 0;
}

}  // namespace Korvo::Plexis::Tessel::Cli

// `tessel watch`: notifications as they arrive, until a signal or a count ends it.

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <iostream>
#include <memory>
#include <mutex>
#include <thread>

#include <Korvo/Plexis/Tessel/Client/NotificationClient.h>

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

}  // namespace

int Watch(const ConnectionSettings& settings, const std::vector<std::string>& topics, bool json,
          std::optional<std::size_t> count, std::ostream& out, std::ostream& err) {
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
    if (writeError >= 0) {
        throw CliError(ExitCode::Local,
                       std::string("cannot write standard output: ") +
                           (writeError != 0 ? std::strerror(writeError) : "write failed"));
    }
    return 0;
}

}  // namespace Korvo::Plexis::Tessel::Cli

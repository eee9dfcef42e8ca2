// `tessel watch`: notifications as they arrive, until a signal or a count ends it.

#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include <Korvo/Plexis/Tessel/Client/NotificationClient.h>

#include "Notifications.h"
#include "Tool.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Messaging = Common::Messaging;

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
    std::condition_variable finished;
    bool stop = false;
    std::size_t printed = 0;

    // The client first: what throws here (a bad endpoint) leaves no thread of ours behind.
    const Messaging::EndPoint endpoint = settings.NotificationEndPoint();
    auto client = std::make_unique<Client::NotificationClient>(
        std::vector<Messaging::EndPoint>{endpoint}, topics);
    {
        auto handlersLock = client->LockHandlers();
        AttachDescriber(*client, [&](const NotificationLine& line) {
            std::lock_guard<std::mutex> lock(mutex);
            if (stop) {
                return;
            }
            out << (json ? line.json : FormatLine(line)) << '\n' << std::flush;
            if (count && ++printed >= *count) {
                stop = true;
                finished.notify_all();
            }
        });
    }
    client->GetSubscription().SetConnectionStateHandler([&](const Messaging::EndPoint& from,
                                                            Messaging::ConnectionState state) {
        if (state == Messaging::ConnectionState::Connected ||
            state == Messaging::ConnectionState::Reconnecting) {
            std::lock_guard<std::mutex> lock(mutex);
            err << "tessel: " << from.Address() << ": " << ToString(state) << '\n' << std::flush;
        }
    });

    std::atomic<bool> signalled{false};
    std::thread signalTaker([&] {
        int signal = 0;
        sigwait(&signals, &signal);
        signalled = true;
        std::lock_guard<std::mutex> lock(mutex);
        stop = true;
        finished.notify_all();
    });
    std::string topicText;
    for (const auto& topic : topics) {
        topicText += (topicText.empty() ? "" : ", ") + topic;
    }
    {
        std::unique_lock<std::mutex> lock(mutex);
        err << "tessel: watching " << endpoint.Address() << " ("
            << (topicText.empty() ? "all topics" : topicText) << "); Ctrl-C to stop\n"
            << std::flush;
        finished.wait(lock, [&] { return stop; });
    }
    client->GetSubscription().SetConnectionStateHandler({});
    client.reset();
    // A count ended the watch: wake the signal thread with a signal of its own.
    if (!signalled) {
        pthread_kill(signalTaker.native_handle(), SIGTERM);
    }
    signalTaker.join();
    return 0;
}

}  // namespace Korvo::Plexis::Tessel::Cli

#include <Korvo/Plexis/Tessel/Simulator/Simulator.h>

#include <sys/eventfd.h>
#include <unistd.h>

#include <zmq.h>

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <deque>
#include <fstream>
#include <future>
#include <mutex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <zmq.hpp>

#include <Korvo/Common/Messaging/SharedContext.h>
#include <Korvo/Plexis/Tessel/Logging/Loggers.h>

#include "Model.h"
#include "logging/LogSupport.h"

namespace Korvo::Plexis::Tessel::Simulator {

namespace {

constexpr const char* kSource = "Korvo/Plexis/Tessel/Simulator/Simulator";
using Logging::ILogger;
using Clock = std::chrono::steady_clock;

constexpr auto kTickInterval = std::chrono::milliseconds(100);
constexpr auto kSaveInterval = std::chrono::seconds(1);
constexpr int kSendHighWaterMark = 100000;
constexpr std::int64_t kMaxMessageSize = 16 * 1024 * 1024;

// Bytes no compact-protocol reader accepts: the first field claims type 15, which does not exist.
const std::string kMalformedPayload("\x1f\xff\xff\xff\xff", 5);

std::int64_t WallClockMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

using SocketPointer = std::unique_ptr<void, int (*)(void*)>;

void WriteFileAtomically(const std::string& path, const std::string& bytes) {
    const std::string temporary = path + ".tmp";
    FILE* file = std::fopen(temporary.c_str(), "wb");
    if (file == nullptr) {
        throw std::runtime_error("cannot write " + temporary + ": " + std::strerror(errno));
    }
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size() &&
                         std::fflush(file) == 0 && ::fsync(fileno(file)) == 0;
    if (std::fclose(file) != 0 || !written) {
        std::remove(temporary.c_str());
        throw std::runtime_error("cannot write " + temporary + ": " + std::strerror(errno));
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        std::remove(temporary.c_str());
        throw std::runtime_error("cannot replace " + path + ": " + std::strerror(errno));
    }
}

}  // namespace

class Simulator::Impl {
public:
    explicit Impl(SimulatorOptions options);
    ~Impl() { Stop(); }

    void Stop();

    // Runs `task` on the simulator's thread and returns its result; inline once stopped.
    template <class Task>
    auto Call(Task task) -> decltype(task()) {
        std::packaged_task<decltype(task())()> packaged(std::move(task));
        auto result = packaged.get_future();
        {
            std::lock_guard<std::mutex> lock(tasksMutex);
            if (!running) {
                packaged();
                return result.get();
            }
            tasks.emplace_back([&packaged] { packaged(); });
        }
        Wake();
        return result.get();
    }

    // Runs `change` on the model from the simulator's thread and publishes what it emits.
    template <class Change>
    auto ChangeModel(Change change) {
        return Call([this, change] {
            Emitter emitter(options.partSize);
            model.Use(emitter);
            auto result = change(model);
            Publish(emitter.notices);
            return result;
        });
    }

    // On the simulator's thread: closes both sockets, losing what was not sent, and binds again.
    void Restart() {
        if (stopping) {
            return;
        }
        delayed.clear();
        CloseSockets();
        Bind();
        Count([](Statistics& s) { ++s.restarts; });
        Emitter emitter(options.partSize);
        model.Use(emitter);
        model.AnnounceServers();
        Publish(emitter.notices);
    }

    std::size_t ClipCount() const { return model.ClipCount(); }

    SimulatorOptions options;
    std::string commandEndpoint, notificationEndpoint, publicKey;
    std::string boundCommandAddress, boundNotificationAddress;

    mutable std::mutex faultsMutex;
    Faults faults;

    mutable std::mutex statsMutex;
    Statistics stats;

    mutable std::mutex subscriptionsMutex;
    std::condition_variable subscriptionsChanged;
    std::multiset<std::string> subscriptions;

private:
    struct Delayed {
        Clock::time_point due;
        std::string identity;
        std::string ticket;
        OutgoingMessage message;
    };

    void Bind();
    void CloseSockets();
    void Run();
    void Wake();
    void RunTasks();
    void ReadCommands();
    void ReadSubscriptions();
    void HandleCommand(std::vector<zmq::message_t>& frames);
    void Send(const std::string& identity, const std::string& ticket,
              const OutgoingMessage& message);
    void Publish(const std::vector<Notice>& notices);
    void SendDue(Clock::time_point now);
    void SaveState();
    bool Draw(double fraction) {
        return fraction > 0 && std::uniform_real_distribution<double>(0, 1)(random) < fraction;
    }
    template <class Change>
    void Count(Change change) {
        std::lock_guard<std::mutex> lock(statsMutex);
        change(stats);
    }

    std::shared_ptr<ILogger> logger;
    std::shared_ptr<void> context;
    SocketPointer router{nullptr, zmq_close};
    SocketPointer publisher{nullptr, zmq_close};
    int wakeFd = -1;
    Model model;
    std::mt19937_64 random;
    std::deque<Delayed> delayed;  // in the order of their due times

    std::mutex tasksMutex;
    std::deque<std::function<void()>> tasks;
    bool running = false;
    std::atomic<bool> stopping{false};
    std::thread thread;
};

Simulator::Impl::Impl(SimulatorOptions givenOptions)
    : options(std::move(givenOptions)),
      faults(options.faults),
      logger(Logging::Loggers::GetInstance().GetLogger("Simulator")),
      model(options, WallClockMs),
      random(options.seed ^ 0x5eedfa17ULL) {
    if (options.servers < 0 || options.playersPerServer < 0 || options.recordersPerServer < 0 ||
        options.clips < 0 || options.playlists < 0 || options.anglesGroups < 0) {
        throw std::invalid_argument("simulator counts must not be negative");
    }
    if (!options.stateFile.empty()) {
        std::ifstream file(options.stateFile, std::ios::binary);
        if (file) {
            std::ostringstream bytes;
            bytes << file.rdbuf();
            model.LoadState(bytes.str());
        }
    }
    const bool inproc = options.commandAddress.rfind("inproc://", 0) == 0 ||
                        options.notificationAddress.rfind("inproc://", 0) == 0;
    context = inproc ? Common::Messaging::SharedContext()
                     : std::shared_ptr<void>(zmq_ctx_new(), zmq_ctx_term);
    if (!options.curveSecretKey.empty()) {
        char key[41] = {};
        if (options.curveSecretKey.size() != 40 ||
            zmq_curve_public(key, options.curveSecretKey.c_str()) != 0) {
            throw std::invalid_argument("the CURVE secret key must be 40 characters of Z85");
        }
        publicKey = key;
    }
    wakeFd = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (wakeFd < 0) {
        throw std::runtime_error(std::string("eventfd: ") + std::strerror(errno));
    }
    boundCommandAddress = options.commandAddress;
    boundNotificationAddress = options.notificationAddress;
    try {
        Bind();
    } catch (...) {
        CloseSockets();
        ::close(wakeFd);
        throw;
    }
    // Later binds (after a restart) reuse the ports chosen now.
    boundCommandAddress = zmq::socket_ref(zmq::from_handle, router.get())
                              .get(zmq::sockopt::last_endpoint);
    boundNotificationAddress = zmq::socket_ref(zmq::from_handle, publisher.get())
                                   .get(zmq::sockopt::last_endpoint);
    const std::string keyPart = publicKey.empty() ? "" : ";curve=" + publicKey;
    commandEndpoint = boundCommandAddress + keyPart;
    notificationEndpoint = boundNotificationAddress + keyPart;
    running = true;
    thread = std::thread(&Impl::Run, this);
    Logging::LogComposed(
        logger, ILogger::Info,
        [&] { return "Listening: commands " + commandEndpoint + ", notifications " +
                     notificationEndpoint; },
        kSource, __LINE__);
}

void Simulator::Impl::Bind() {
    auto open = [&](int type, const std::string& address) {
        SocketPointer socket(zmq_socket(context.get(), type), zmq_close);
        if (!socket) {
            throw std::runtime_error(std::string("cannot create a socket: ") + zmq_strerror(errno));
        }
        zmq::socket_ref ref(zmq::from_handle, socket.get());
        ref.set(zmq::sockopt::linger, 0);
        ref.set(zmq::sockopt::sndhwm, kSendHighWaterMark);
        ref.set(zmq::sockopt::maxmsgsize, kMaxMessageSize);
        if (!options.curveSecretKey.empty()) {
            ref.set(zmq::sockopt::curve_server, true);
            ref.set(zmq::sockopt::curve_secretkey, options.curveSecretKey);
        }
        if (type == ZMQ_XPUB) {
            ref.set(zmq::sockopt::xpub_verbose, true);
        }
        // A port just released by a restart may take a moment to be free again.
        const auto deadline = Clock::now() + std::chrono::seconds(5);
        while (zmq_bind(socket.get(), address.c_str()) != 0) {
            if (errno != EADDRINUSE || Clock::now() > deadline) {
                throw std::runtime_error("cannot bind " + address + ": " + zmq_strerror(errno));
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return socket;
    };
    router = open(ZMQ_ROUTER, boundCommandAddress);
    publisher = open(ZMQ_XPUB, boundNotificationAddress);
}

void Simulator::Impl::CloseSockets() {
    router.reset();
    publisher.reset();
    std::lock_guard<std::mutex> lock(subscriptionsMutex);
    subscriptions.clear();
}

void Simulator::Impl::Wake() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(wakeFd, &one, sizeof one);
}

void Simulator::Impl::Stop() {
    if (!thread.joinable()) {
        return;
    }
    stopping = true;
    Wake();
    thread.join();
    // Calls made from now on run inline under this lock, after everything below.
    std::lock_guard<std::mutex> lock(tasksMutex);
    running = false;
    while (!tasks.empty()) {
        tasks.front()();
        tasks.pop_front();
    }
    SaveState();
    CloseSockets();
    ::close(wakeFd);
    wakeFd = -1;
    context.reset();
}

void Simulator::Impl::Run() {
    auto nextTick = Clock::now() + kTickInterval;
    auto nextSave = Clock::now() + kSaveInterval;
    while (!stopping) {
        auto wakeAt = nextTick;
        if (!delayed.empty()) {
            wakeAt = std::min(wakeAt, delayed.front().due);
        }
        const auto wait = std::chrono::duration_cast<std::chrono::milliseconds>(wakeAt -
                                                                                Clock::now());
        zmq_pollitem_t items[] = {{router.get(), 0, ZMQ_POLLIN, 0},
                                  {publisher.get(), 0, ZMQ_POLLIN, 0},
                                  {nullptr, wakeFd, ZMQ_POLLIN, 0}};
        if (zmq_poll(items, 3, std::max<long>(0, static_cast<long>(wait.count()) + 1)) < 0 &&
            zmq_errno() != EINTR) {
            Logging::LogComposed(
                logger, ILogger::Fatal,
                [] { return std::string("Polling failed: ") + zmq_strerror(zmq_errno()); },
                kSource, __LINE__);
            break;
        }
        if (items[2].revents & ZMQ_POLLIN) {
            std::uint64_t count = 0;
            [[maybe_unused]] const auto read = ::read(wakeFd, &count, sizeof count);
            RunTasks();
        }
        if (items[0].revents & ZMQ_POLLIN) {
            ReadCommands();
        }
        if (items[1].revents & ZMQ_POLLIN) {
            ReadSubscriptions();
        }
        const auto now = Clock::now();
        SendDue(now);
        if (now >= nextTick) {
            Emitter emitter(options.partSize);
            model.Use(emitter);
            model.Tick();
            Publish(emitter.notices);
            nextTick = now + kTickInterval;
        }
        if (now >= nextSave) {
            SaveState();
            nextSave = now + kSaveInterval;
        }
    }
}

void Simulator::Impl::RunTasks() {
    std::deque<std::function<void()>> ready;
    {
        std::lock_guard<std::mutex> lock(tasksMutex);
        ready.swap(tasks);
    }
    for (auto& task : ready) {
        task();
    }
}

void Simulator::Impl::ReadCommands() {
    zmq::socket_ref socket(zmq::from_handle, router.get());
    // A bounded batch, so that ticks and tasks are never starved by a flood.
    for (int batch = 0; batch < 256 && router; ++batch) {
        std::vector<zmq::message_t> frames;
        zmq::message_t frame;
        if (!socket.recv(frame, zmq::recv_flags::dontwait)) {
            return;
        }
        bool more = frame.more();
        frames.push_back(std::move(frame));
        while (more) {
            zmq::message_t next;
            (void)socket.recv(next);
            more = next.more();
            if (frames.size() < 5) {
                frames.push_back(std::move(next));
            } else {
                frames.emplace_back();  // only counted
            }
        }
        HandleCommand(frames);
    }
}

void Simulator::Impl::HandleCommand(std::vector<zmq::message_t>& frames) {
    // [routing id][ticket: 4 bytes][command name][payload]
    if (frames.size() != 4 || frames[1].size() != 4) {
        Count([](Statistics& s) { ++s.malformedReceived; });
        Logging::Log(logger, ILogger::Warning, "Dropped a command with a malformed envelope.",
                     kSource, __LINE__);
        return;
    }
    Count([](Statistics& s) { ++s.commandsReceived; });
    const Faults current = [this] {
        std::lock_guard<std::mutex> lock(faultsMutex);
        return faults;
    }();
    if (current.silent) {
        return;
    }
    const std::string identity = frames[0].to_string();
    const std::string ticket = frames[1].to_string();
    const std::string name = frames[2].to_string();
    Emitter emitter(options.partSize);
    model.Use(emitter);
    try {
        if (!Dispatch(name, frames[3].data<unsigned char>(),
                      static_cast<unsigned int>(frames[3].size()), model)) {
            Commands::UnknownCommandReply reply;
            reply.message = "Unknown command \"" + name + "\".";
            emitter.Reply(reply);
        }
    } catch (const UndecodablePayload& failure) {
        emitter.replies.clear();
        emitter.notices.clear();
        Commands::FailureReply reply;
        reply.message = name + ": the payload could not be decoded: " + failure.what();
        emitter.Reply(reply);
    }

    auto& replies = emitter.replies;
    if (Draw(current.dropFraction)) {
        Count([&](Statistics& s) { s.repliesDropped += replies.size(); });
        replies.clear();
    } else {
        if (Draw(current.malformedFraction)) {
            replies.back().payload = kMalformedPayload;
        }
        if (Draw(current.duplicateFraction)) {
            replies.push_back(replies.back());
        }
    }
    auto delay = current.replyDelay;
    if (current.replyJitter.count() > 0) {
        delay += std::chrono::milliseconds(std::uniform_int_distribution<std::int64_t>(
            0, current.replyJitter.count())(random));
    }
    if (delay.count() == 0 && delayed.empty()) {
        for (const auto& message : replies) {
            Send(identity, ticket, message);
        }
    } else {
        // Due times never go backwards, so the queue stays ordered and one ticket's messages
        // keep their order.
        auto due = Clock::now() + delay;
        if (!delayed.empty()) {
            due = std::max(due, delayed.back().due);
        }
        for (auto& message : replies) {
            delayed.push_back({due, identity, ticket, std::move(message)});
        }
    }
    Publish(emitter.notices);
}

void Simulator::Impl::Send(const std::string& identity, const std::string& ticket,
                           const OutgoingMessage& message) {
    if (!router) {
        return;
    }
    zmq::socket_ref socket(zmq::from_handle, router.get());
    try {
        socket.send(zmq::buffer(identity), zmq::send_flags::sndmore);
        socket.send(zmq::buffer(ticket), zmq::send_flags::sndmore);
        socket.send(zmq::buffer(message.header), zmq::send_flags::sndmore);
        socket.send(zmq::buffer(message.payload), zmq::send_flags::none);
        Count([](Statistics& s) { ++s.repliesSent; });
    } catch (const zmq::error_t& failure) {
        Logging::LogComposed(
            logger, ILogger::Error,
            [&] { return std::string("Could not send a reply: ") + failure.what(); }, kSource,
            __LINE__);
    }
}

void Simulator::Impl::SendDue(Clock::time_point now) {
    while (!delayed.empty() && delayed.front().due <= now) {
        const auto& next = delayed.front();
        Send(next.identity, next.ticket, next.message);
        delayed.pop_front();
    }
}

void Simulator::Impl::Publish(const std::vector<Notice>& notices) {
    if (!publisher) {
        return;
    }
    zmq::socket_ref socket(zmq::from_handle, publisher.get());
    for (const auto& notice : notices) {
        socket.send(zmq::buffer(notice.topic), zmq::send_flags::sndmore);
        socket.send(zmq::buffer(notice.header), zmq::send_flags::sndmore);
        socket.send(zmq::buffer(notice.payload), zmq::send_flags::none);
    }
    Count([&](Statistics& s) { s.notificationsPublished += notices.size(); });
}

void Simulator::Impl::ReadSubscriptions() {
    zmq::socket_ref socket(zmq::from_handle, publisher.get());
    zmq::message_t message;
    while (socket.recv(message, zmq::recv_flags::dontwait)) {
        // One frame: 1 (subscribe) or 0 (unsubscribe), then the topic.
        if (message.size() == 0) {
            continue;
        }
        const std::string topic(message.data<char>() + 1, message.size() - 1);
        std::lock_guard<std::mutex> lock(subscriptionsMutex);
        if (message.data<unsigned char>()[0] == 1) {
            subscriptions.insert(topic);
        } else if (const auto found = subscriptions.find(topic); found != subscriptions.end()) {
            subscriptions.erase(found);
        }
        subscriptionsChanged.notify_all();
    }
}

void Simulator::Impl::SaveState() {
    if (options.stateFile.empty() || !model.TakeDirty()) {
        return;
    }
    try {
        WriteFileAtomically(options.stateFile, model.SaveState());
    } catch (const std::exception& failure) {
        Logging::LogComposed(
            logger, ILogger::Error, [&] { return std::string(failure.what()); }, kSource,
            __LINE__);
    }
}

// ---------------------------------------------------------------------------------------------

Simulator::Simulator(SimulatorOptions options) : impl(std::make_unique<Impl>(std::move(options))) {}

Simulator::~Simulator() = default;

const std::string& Simulator::CommandEndpoint() const noexcept { return impl->commandEndpoint; }
const std::string& Simulator::NotificationEndpoint() const noexcept {
    return impl->notificationEndpoint;
}
const std::string& Simulator::PublicKey() const noexcept { return impl->publicKey; }

void Simulator::SetFaults(const Faults& faults) {
    std::lock_guard<std::mutex> lock(impl->faultsMutex);
    impl->faults = faults;
}

Faults Simulator::GetFaults() const {
    std::lock_guard<std::mutex> lock(impl->faultsMutex);
    return impl->faults;
}

Statistics Simulator::GetStatistics() const {
    std::lock_guard<std::mutex> lock(impl->statsMutex);
    return impl->stats;
}

void Simulator::Stop() { impl->Stop(); }

void Simulator::Restart() {
    impl->Call([this] {
        impl->Restart();
        return true;
    });
}

bool Simulator::DropOffNetwork(int serverId) {
    return impl->ChangeModel([serverId](Model& model) { return model.SetOnline(serverId, false); });
}

bool Simulator::ReturnToNetwork(int serverId) {
    return impl->ChangeModel([serverId](Model& model) { return model.SetOnline(serverId, true); });
}

int Simulator::AddServer() {
    return impl->ChangeModel([](Model& model) { return model.AddServer(); });
}

bool Simulator::RemoveServer(int serverId) {
    return impl->ChangeModel([serverId](Model& model) { return model.RemoveServer(serverId); });
}

std::size_t Simulator::ClipCount() const {
    return impl->Call([this] { return impl->ClipCount(); });
}

std::pair<std::string, std::string> GenerateCurveKeyPair() {
    char publicKey[41] = {};
    char secretKey[41] = {};
    if (zmq_curve_keypair(publicKey, secretKey) != 0) {
        throw std::runtime_error(std::string("cannot make a CURVE key pair: ") +
                                 zmq_strerror(zmq_errno()));
    }
    return {publicKey, secretKey};
}

bool Simulator::WaitForSubscriber(const std::string& topic, std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> lock(impl->subscriptionsMutex);
    return impl->subscriptionsChanged.wait_for(lock, limit, [&] {
        for (const auto& subscribed : impl->subscriptions) {
            if (topic.compare(0, subscribed.size(), subscribed) == 0) {
                return true;
            }
        }
        return false;
    });
}

}  // namespace Korvo::Plexis::Tessel::Simulator

#include <Korvo/Plexis/Tessel/Simulator/Simulator.h>

#include <fcntl.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <zmq.h>

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <deque>
#include <future>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>

#include <zmq.hpp>

#include <Korvo/Common/Messaging/SharedContext.h>
#include <Korvo/Plexis/Tessel/Logging/Loggers.h>

#include "Model.h"
#include <Korvo/Plexis/Tessel/Logging/Log.h>
#include <Korvo/Plexis/Tessel/Logging/RateLimit.h>

namespace Korvo::Plexis::Tessel::Simulator {

namespace {

constexpr const char* kSource = "Korvo/Plexis/Tessel/Simulator/Simulator";
using Logging::ILogger;
using Clock = std::chrono::steady_clock;

constexpr auto kTickInterval = std::chrono::milliseconds(100);
constexpr auto kSaveInterval = std::chrono::seconds(1);
constexpr auto kRebindInterval = std::chrono::seconds(1);
// How long a restart waits for its own ports, which ZeroMQ releases asynchronously.
constexpr auto kRestartPatience = std::chrono::seconds(2);
// While replies wait in the simulator's own queues and ZeroMQ took none at the last offer, they
// are offered again this often; while it takes them, as soon as the socket has room.
constexpr auto kRetryInterval = std::chrono::milliseconds(2);
// ZeroMQ's own queues hold few messages per peer: replies wait in the simulator's queues,
// which are bounded in bytes, and notifications for a subscriber that does not read are dropped.
constexpr int kCommandHighWaterMark = 8;
constexpr int kNotificationHighWaterMark = 10000;
constexpr std::int64_t kMaxMessageSize = 16 * 1024 * 1024;
// A subscription is a topic, tens of bytes; ZeroMQ keeps each one in a trie of one node per
// byte, so a subscriber sending a longer one is disconnected.
constexpr std::int64_t kMaxSubscriptionSize = 1024;
// Messages read in one turn of the loop from either socket, so that a flood on one never starves
// the other, the ticks or the calls of the API.
constexpr int kReadBatch = 256;
// What an entry of a queue costs beyond its bytes, for the accounting of the bounds.
constexpr std::size_t kEntryOverhead = 128;

// Bytes no compact-protocol reader accepts: the first field claims type 15, which does not exist.
const std::string kMalformedPayload("\x1f\xff\xff\xff\xff", 5);

std::int64_t WallClockMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

using SocketPointer = std::unique_ptr<void, int (*)(void*)>;

// Reads the state file, refusing before reading anything one that is not a regular file or is
// longer than `limit`. Empty when there is no file.
std::string ReadStateFile(const std::string& path, std::size_t limit) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        if (errno == ENOENT) {
            return {};
        }
        throw std::runtime_error("cannot read the state file " + path + ": " +
                                 std::strerror(errno));
    }
    std::unique_ptr<int, void (*)(int*)> closer(new int(fd), [](int* owned) {
        ::close(*owned);
        delete owned;
    });
    struct stat status {};
    if (::fstat(fd, &status) != 0) {
        throw std::runtime_error("cannot read the state file " + path + ": " +
                                 std::strerror(errno));
    }
    if (!S_ISREG(status.st_mode)) {
        throw std::runtime_error("the state file " + path + " is not a regular file");
    }
    if (static_cast<std::uint64_t>(status.st_size) > limit) {
        throw std::runtime_error("the state file " + path + " is " +
                                 std::to_string(status.st_size) + " bytes, more than the " +
                                 std::to_string(limit) + " allowed");
    }
    std::string bytes;
    char buffer[65536];
    for (;;) {
        const ssize_t count = ::read(fd, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            throw std::runtime_error("cannot read the state file " + path + ": " +
                                     std::strerror(errno));
        }
        if (count == 0) {
            return bytes;
        }
        if (bytes.size() + static_cast<std::size_t>(count) > limit) {  // it grew meanwhile
            throw std::runtime_error("the state file " + path + " is more than the " +
                                     std::to_string(limit) + " bytes allowed");
        }
        bytes.append(buffer, static_cast<std::size_t>(count));
    }
}

constexpr auto kMaxDelay = std::chrono::hours(1);

void CheckFaults(const Faults& faults) {
    for (const double fraction :
         {faults.dropFraction, faults.malformedFraction, faults.duplicateFraction,
          faults.notificationDropFraction, faults.notificationDelayFraction}) {
        if (!(fraction >= 0 && fraction <= 1)) {  // NaN fails both
            throw std::invalid_argument("fault fractions must be between 0 and 1");
        }
    }
    for (const auto delay : {faults.replyDelay, faults.replyJitter, faults.notificationDelay}) {
        if (delay.count() < 0 || delay > kMaxDelay) {
            throw std::invalid_argument("reply and notification delays must be between 0 and one hour");
        }
    }
}

// The options, once checked: counts within their range, so that seeding cannot exhaust memory.
const SimulatorOptions& Checked(const SimulatorOptions& options) {
    for (const int count : {options.servers, options.playersPerServer, options.recordersPerServer,
                            options.clips, options.playlists, options.anglesGroups}) {
        if (count < 0 || count > kMaxCount) {
            throw std::invalid_argument("simulator counts must be between 0 and " +
                                        std::to_string(kMaxCount));
        }
    }
    const long long channels = static_cast<long long>(options.servers) *
                               (options.playersPerServer + options.recordersPerServer);
    if (channels > kMaxCount) {
        throw std::invalid_argument("at most " + std::to_string(kMaxCount) +
                                    " channels in all (servers times channels per server)");
    }
    if (options.partSize == 0) {
        throw std::invalid_argument("the part size must be at least 1");
    }
    CheckFaults(options.faults);
    return options;
}

std::size_t CostOf(const OutgoingMessage& message) {
    return message.header.size() + message.payload.size() + kEntryOverhead;
}

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

    // Runs `change` on the model as an operator at the server would: what it emits, replies and
    // notifications alike, is dropped.
    template <class Change>
    bool Unannounced(Change change) {
        return Call([this, change] {
            Emitter scratch(options.partSize);
            model.Use(scratch);
            const bool changed = change(model);
            if (changed) {
                Count([](Statistics& s) { ++s.unannouncedChanges; });
            }
            return changed;
        });
    }

    // On the simulator's thread: closes both sockets, losing what was not sent, and binds again.
    // On failure the simulator stays unbound and `Run` tries again every second.
    void Restart() {
        if (stopping) {
            return;
        }
        delayed.clear();
        delayedBytes = 0;
        delayedNotices.clear();
        delayedNoticeBytes = 0;
        delayedByPeer.clear();
        outbox.clear();
        outboxBytes = 0;
        outboxMoving = false;
        CloseSockets();
        Count([](Statistics& s) { ++s.restarts; });
        try {
            Bind(kRestartPatience);
        } catch (const std::exception& failure) {
            nextRebind = Clock::now() + kRebindInterval;
            throw std::runtime_error(std::string(failure.what()) +
                                     "; trying again every second");
        }
        Announce();
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
    // Replies ZeroMQ would not take yet for one peer, oldest first.
    struct PeerQueue {
        std::deque<std::pair<std::string, OutgoingMessage>> messages;  // ticket, message
        std::size_t bytes = 0;
    };
    enum class Offer { Taken, Full, Gone };

    // Binds both sockets or neither; an address in use is tried again for up to `patience`.
    void Bind(Clock::duration patience);
    void Announce();
    void CloseSockets();
    void Run();
    void Wake();
    void RunTasks();
    void ReadCommands();
    void ReadSubscriptions();
    void HandleCommand(std::vector<zmq::message_t>& frames);
    void Send(const std::string& identity, const std::string& ticket, OutgoingMessage message);
    Offer OfferToSocket(const std::string& identity, const std::string& ticket,
                        const OutgoingMessage& message);
    // Offers what waits to ZeroMQ; whether it took any.
    bool FlushOutbox();
    void Shed(const char* where, std::size_t held, std::size_t limit);
    void Publish(const std::vector<Notice>& notices);
    void PublishOne(const Notice& notice);
    void PublishDue(Clock::time_point now);
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
    // Notifications held back by a fault, in the order of their due times.
    std::deque<std::pair<Clock::time_point, Notice>> delayedNotices;
    std::size_t delayedNoticeBytes = 0;
    std::size_t delayedBytes = 0;
    // Of `delayedBytes`, each peer's share: one peer that floods may not take all the room and
    // leave every other peer's replies to be shed.
    std::map<std::string, std::size_t> delayedByPeer;
    std::map<std::string, PeerQueue> outbox;  // by peer identity; no empty queue is kept
    std::size_t outboxBytes = 0;
    bool outboxMoving = false;
    std::size_t subscriptionBytes = 0;  // of the topics in `subscriptions`
    Clock::time_point nextRebind{};
    Logging::RateLimit shedLog, envelopeLog, sendLog, subscriptionLog;

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
      model(Checked(options), WallClockMs),
      random(options.seed ^ 0x5eedfa17ULL) {
    if (!options.stateFile.empty()) {
        const std::string bytes = ReadStateFile(options.stateFile, options.stateFileLimitBytes);
        if (!bytes.empty()) {
            try {
                model.LoadState(bytes);
            } catch (const std::exception& failure) {
                throw std::runtime_error("the state file " + options.stateFile +
                                         " cannot be used: " + failure.what());
            }
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
        Bind(Clock::duration::zero());
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
    KORVO_LOG_COMPOSED(logger, ILogger::Info, [&] {
        return "Listening: commands " + commandEndpoint + ", notifications " + notificationEndpoint;
    });
}

void Simulator::Impl::Bind(Clock::duration patience) {
    const auto deadline = Clock::now() + patience;
    auto open = [&](int type, const std::string& address) {
        SocketPointer socket(zmq_socket(context.get(), type), zmq_close);
        if (!socket) {
            throw std::runtime_error(std::string("cannot create a socket: ") + zmq_strerror(errno));
        }
        zmq::socket_ref ref(zmq::from_handle, socket.get());
        ref.set(zmq::sockopt::linger, 0);
        ref.set(zmq::sockopt::sndhwm,
                type == ZMQ_ROUTER ? kCommandHighWaterMark : kNotificationHighWaterMark);
        ref.set(zmq::sockopt::maxmsgsize,
                type == ZMQ_ROUTER ? kMaxMessageSize : kMaxSubscriptionSize);
        if (!options.curveSecretKey.empty()) {
            ref.set(zmq::sockopt::curve_server, true);
            ref.set(zmq::sockopt::curve_secretkey, options.curveSecretKey);
        }
        if (type == ZMQ_ROUTER) {
            // A reply ZeroMQ cannot queue is refused at once instead of silently dropped, so
            // that it can wait in a bounded queue of ours, and one for a departed peer is known.
            ref.set(zmq::sockopt::router_mandatory, true);
        } else {
            // Every subscription and every unsubscription, those of a departing subscriber
            // included, so that the topics kept here are those of the peers still connected.
            ref.set(zmq::sockopt::xpub_verboser, true);
        }
        while (zmq_bind(socket.get(), address.c_str()) != 0) {
            const int error = zmq_errno();
            if (error != EADDRINUSE || Clock::now() >= deadline) {
                std::string text = "cannot bind " + address + ": " + zmq_strerror(error);
                if (error == EADDRINUSE) {
                    text += " (another program holds the port: stop it, or choose other addresses)";
                }
                throw std::runtime_error(text);
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return socket;
    };
    SocketPointer commands = open(ZMQ_ROUTER, boundCommandAddress);
    SocketPointer notifications = open(ZMQ_XPUB, boundNotificationAddress);
    router = std::move(commands);
    publisher = std::move(notifications);
}

void Simulator::Impl::Announce() {
    Emitter emitter(options.partSize);
    model.Use(emitter);
    model.AnnounceServers();
    Publish(emitter.notices);
}

void Simulator::Impl::CloseSockets() {
    router.reset();
    publisher.reset();
    std::lock_guard<std::mutex> lock(subscriptionsMutex);
    subscriptions.clear();
    subscriptionBytes = 0;
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
        if (!delayedNotices.empty()) {
            wakeAt = std::min(wakeAt, delayedNotices.front().first);
        }
        if (!outbox.empty()) {
            wakeAt = std::min(wakeAt, Clock::now() + kRetryInterval);
        }
        const auto wait = std::chrono::duration_cast<std::chrono::milliseconds>(wakeAt -
                                                                                Clock::now());
        // Unbound after a failed restart: only the wake-up and the clock.
        // The command socket's room is watched only while replies wait and the last offer moved
        // some: a peer that reads nothing leaves its queue full while others have room, and
        // watching for room then would spin.
        const short commandEvents = ZMQ_POLLIN | (outboxMoving ? ZMQ_POLLOUT : 0);
        zmq_pollitem_t items[] = {{nullptr, wakeFd, ZMQ_POLLIN, 0},
                                  {router.get(), 0, commandEvents, 0},
                                  {publisher.get(), 0, ZMQ_POLLIN, 0}};
        const int itemCount = router && publisher ? 3 : 1;
        if (zmq_poll(items, itemCount, std::max<long>(0, static_cast<long>(wait.count()) + 1)) <
                0 &&
            zmq_errno() != EINTR) {
            KORVO_LOG_COMPOSED(logger, ILogger::Fatal, [] {
                return std::string("Polling failed: ") + zmq_strerror(zmq_errno());
            });
            break;
        }
        if (items[0].revents & ZMQ_POLLIN) {
            std::uint64_t count = 0;
            [[maybe_unused]] const auto read = ::read(wakeFd, &count, sizeof count);
            RunTasks();
        }
        if (itemCount == 3 && (items[1].revents & ZMQ_POLLIN) && router) {
            ReadCommands();
        }
        if (itemCount == 3 && (items[2].revents & ZMQ_POLLIN) && publisher) {
            ReadSubscriptions();
        }
        outboxMoving = !outbox.empty() && FlushOutbox();
        const auto now = Clock::now();
        SendDue(now);
        PublishDue(now);
        if (!router && nextRebind != Clock::time_point{} && now >= nextRebind) {
            try {
                Bind(Clock::duration::zero());
                nextRebind = {};
                KORVO_LOG(logger, ILogger::Info, "Bound again after a restart.");
                Announce();
            } catch (const std::exception&) {
                nextRebind = now + kRebindInterval;
            }
        }
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
    for (int batch = 0; batch < kReadBatch && router; ++batch) {
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
        if (const auto admitted = envelopeLog.Admit()) {
            KORVO_LOG_COMPOSED(logger, ILogger::Warning, [&] {
                return "Dropped a command with a malformed envelope." +
                       Logging::Suppressed(*admitted);
            });
        }
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
        for (auto& message : replies) {
            Send(identity, ticket, std::move(message));
        }
    } else {
        // Due times never go backwards, so the queue stays ordered and one ticket's messages
        // keep their order.
        auto due = Clock::now() + delay;
        if (!delayed.empty()) {
            due = std::max(due, delayed.back().due);
        }
        for (auto& message : replies) {
            const std::size_t cost = CostOf(message);
            const auto share = delayedByPeer.find(identity);
            const std::size_t held = share == delayedByPeer.end() ? 0 : share->second;
            if (held > 0 && held + cost > options.peerQueueBytes) {
                Shed("delayed replies for one peer", held, options.peerQueueBytes);
                continue;
            }
            if (!delayed.empty() && delayedBytes + cost > options.delayedReplyBytes) {
                Shed("delayed replies", delayedBytes, options.delayedReplyBytes);
                continue;
            }
            delayedBytes += cost;
            delayedByPeer[identity] += cost;
            delayed.push_back({due, identity, ticket, std::move(message)});
        }
    }
    Publish(emitter.notices);
}

void Simulator::Impl::Send(const std::string& identity, const std::string& ticket,
                           OutgoingMessage message) {
    if (!router) {
        return;
    }
    auto queued = outbox.find(identity);
    if (queued == outbox.end()) {
        const Offer offer = OfferToSocket(identity, ticket, message);
        if (offer != Offer::Full) {
            return;
        }
        queued = outbox.emplace(identity, PeerQueue{}).first;
    }
    // Behind what already waits for this peer, so that its replies keep their order.
    auto& queue = queued->second;
    const std::size_t cost = CostOf(message);
    if (!queue.messages.empty() && (queue.bytes + cost > options.peerQueueBytes ||
                                    outboxBytes + cost > options.sendQueueBytes)) {
        const bool peerFull = queue.bytes + cost > options.peerQueueBytes;
        Shed(peerFull ? "replies for one peer" : "replies for all peers",
             peerFull ? queue.bytes : outboxBytes,
             peerFull ? options.peerQueueBytes : options.sendQueueBytes);
        return;
    }
    queue.bytes += cost;
    outboxBytes += cost;
    queue.messages.emplace_back(ticket, std::move(message));
}

Simulator::Impl::Offer Simulator::Impl::OfferToSocket(const std::string& identity,
                                                      const std::string& ticket,
                                                      const OutgoingMessage& message) {
    // With ROUTER_MANDATORY the identity frame is refused (EAGAIN: the peer's queue is full;
    // EHOSTUNREACH: no such peer) and nothing is sent; once it is taken, the rest is too.
    if (zmq_send(router.get(), identity.data(), identity.size(), ZMQ_SNDMORE | ZMQ_DONTWAIT) < 0) {
        const int error = zmq_errno();
        if (error == EAGAIN) {
            return Offer::Full;
        }
        if (error != EHOSTUNREACH) {
            if (const auto admitted = sendLog.Admit()) {
                KORVO_LOG_COMPOSED(logger, ILogger::Error, [&] {
                    return std::string("Could not send a reply: ") + zmq_strerror(error) +
                           Logging::Suppressed(*admitted);
                });
            }
        }
        return Offer::Gone;
    }
    zmq_send(router.get(), ticket.data(), ticket.size(), ZMQ_SNDMORE | ZMQ_DONTWAIT);
    zmq_send(router.get(), message.header.data(), message.header.size(),
             ZMQ_SNDMORE | ZMQ_DONTWAIT);
    zmq_send(router.get(), message.payload.data(), message.payload.size(), ZMQ_DONTWAIT);
    Count([](Statistics& s) { ++s.repliesSent; });
    return Offer::Taken;
}

bool Simulator::Impl::FlushOutbox() {
    bool moved = false;
    for (auto peer = outbox.begin(); peer != outbox.end() && router;) {
        auto& queue = peer->second;
        Offer offer = Offer::Taken;
        while (!queue.messages.empty()) {
            const auto& [ticket, message] = queue.messages.front();
            offer = OfferToSocket(peer->first, ticket, message);
            if (offer == Offer::Full) {
                break;
            }
            // Taken, or the peer has gone: either way it no longer waits here.
            moved = true;
            const std::size_t cost = CostOf(message);
            queue.bytes -= cost;
            outboxBytes -= cost;
            queue.messages.pop_front();
            if (offer == Offer::Gone) {
                // A departed peer: everything it left is freed at once.
                outboxBytes -= queue.bytes;
                queue.messages.clear();
                queue.bytes = 0;
            }
        }
        peer = queue.messages.empty() ? outbox.erase(peer) : std::next(peer);
    }
    return moved;
}

void Simulator::Impl::Shed(const char* where, std::size_t held, std::size_t limit) {
    Count([](Statistics& s) { ++s.repliesShed; });
    if (const auto admitted = shedLog.Admit()) {
        KORVO_LOG_COMPOSED(logger, ILogger::Warning, [&] {
            return std::string("Dropped a reply: the ") + where + " hold " + std::to_string(held) +
                   " bytes, the limit is " + std::to_string(limit) + Logging::Suppressed(*admitted);
        });
    }
}

void Simulator::Impl::SendDue(Clock::time_point now) {
    while (!delayed.empty() && delayed.front().due <= now) {
        auto& next = delayed.front();
        const std::size_t cost = CostOf(next.message);
        delayedBytes -= cost;
        const auto share = delayedByPeer.find(next.identity);
        if (share != delayedByPeer.end() && (share->second -= cost) == 0) {
            delayedByPeer.erase(share);
        }
        Send(next.identity, next.ticket, std::move(next.message));
        delayed.pop_front();
    }
}

void Simulator::Impl::Publish(const std::vector<Notice>& notices) {
    if (!publisher) {
        return;
    }
    Faults current;
    {
        std::lock_guard<std::mutex> lock(faultsMutex);
        current = faults;
    }
    std::uint64_t dropped = 0, held = 0, published = 0;
    const auto due = Clock::now() + current.notificationDelay;
    for (const auto& notice : notices) {
        if (Draw(current.notificationDropFraction)) {
            ++dropped;
            continue;
        }
        const std::size_t cost = notice.topic.size() + notice.header.size() + notice.payload.size();
        // Beyond the bound of held replies, a notice that would be held is published at once.
        if (current.notificationDelay.count() > 0 && Draw(current.notificationDelayFraction) &&
            delayedNoticeBytes + cost <= options.delayedReplyBytes) {
            delayedNoticeBytes += cost;
            delayedNotices.emplace_back(due, notice);
            ++held;
            continue;
        }
        PublishOne(notice);
        ++published;
    }
    Count([&](Statistics& s) {
        s.notificationsPublished += published;
        s.notificationsDropped += dropped;
        s.notificationsDelayed += held;
    });
}

void Simulator::Impl::PublishOne(const Notice& notice) {
    zmq::socket_ref socket(zmq::from_handle, publisher.get());
    socket.send(zmq::buffer(notice.topic), zmq::send_flags::sndmore);
    socket.send(zmq::buffer(notice.header), zmq::send_flags::sndmore);
    socket.send(zmq::buffer(notice.payload), zmq::send_flags::none);
}

void Simulator::Impl::PublishDue(Clock::time_point now) {
    std::uint64_t published = 0;
    while (publisher && !delayedNotices.empty() && delayedNotices.front().first <= now) {
        const auto& notice = delayedNotices.front().second;
        delayedNoticeBytes -= notice.topic.size() + notice.header.size() + notice.payload.size();
        PublishOne(notice);
        delayedNotices.pop_front();
        ++published;
    }
    if (published != 0) {
        Count([&](Statistics& s) { s.notificationsPublished += published; });
    }
}

void Simulator::Impl::ReadSubscriptions() {
    zmq::socket_ref socket(zmq::from_handle, publisher.get());
    zmq::message_t message;
    for (int batch = 0; batch < kReadBatch && socket.recv(message, zmq::recv_flags::dontwait);
         ++batch) {
        // One frame: 1 (subscribe) or 0 (unsubscribe), then the topic.
        if (message.size() == 0) {
            continue;
        }
        const std::string topic(message.data<char>() + 1, message.size() - 1);
        const std::size_t cost = topic.size() + kEntryOverhead;
        std::lock_guard<std::mutex> lock(subscriptionsMutex);
        if (message.data<unsigned char>()[0] == 1) {
            if (subscriptionBytes + cost > options.subscriptionBytes) {
                Count([](Statistics& s) { ++s.subscriptionsIgnored; });
                if (const auto admitted = subscriptionLog.Admit()) {
                    KORVO_LOG_COMPOSED(
                        logger, ILogger::Warning, [&] {
                            return "Not keeping a subscription: the topics kept reach the limit "
                                   "of " + std::to_string(options.subscriptionBytes) +
                                   " bytes" + Logging::Suppressed(*admitted);
                        });
                }
                continue;
            }
            subscriptions.insert(topic);
            subscriptionBytes += cost;
        } else if (const auto found = subscriptions.find(topic); found != subscriptions.end()) {
            subscriptions.erase(found);
            subscriptionBytes -= cost;
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
        KORVO_LOG_COMPOSED(logger, ILogger::Error, [&] { return std::string(failure.what()); });
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
    CheckFaults(faults);
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

bool Simulator::ChangeChannelUnannounced(const std::string& channel) {
    const auto id = Data::Channels::Guid::Parse(channel);
    return id && impl->Unannounced([id = *id](Model& model) { return model.OperatorToggleChannel(id); });
}

bool Simulator::ChangeClipUnannounced(const std::string& umId, const std::string& name) {
    return impl->Unannounced(
        [umId, name](Model& model) { return model.OperatorRenameClip(umId, name); });
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

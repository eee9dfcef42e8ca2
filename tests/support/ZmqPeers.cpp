#include "support/ZmqPeers.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>

namespace Korvo::Testing {

std::string TicketBytes(int ticket) {
    const auto bits = static_cast<std::uint32_t>(ticket);
    return {static_cast<char>(bits), static_cast<char>(bits >> 8), static_cast<char>(bits >> 16),
            static_cast<char>(bits >> 24)};
}

int TicketOf(const std::string& bytes) {
    std::uint32_t bits = 0;
    for (std::size_t i = 4; i-- > 0;) {
        bits = bits << 8 | static_cast<unsigned char>(bytes.at(i));
    }
    return static_cast<int>(bits);
}

int PortOf(const std::string& address) {
    return std::stoi(address.substr(address.rfind(':') + 1));
}

namespace {

void SendFrames(zmq::socket_t& socket, const Frames& frames) {
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const auto flags = i + 1 < frames.size() ? zmq::send_flags::sndmore : zmq::send_flags::none;
        socket.send(zmq::buffer(frames[i]), flags);
    }
}

std::optional<Frames> ReceiveFrames(zmq::socket_t& socket, std::chrono::milliseconds limit) {
    socket.set(zmq::sockopt::rcvtimeo, static_cast<int>(limit.count()));
    Frames frames;
    zmq::message_t part;
    do {
        if (!socket.recv(part)) {
            return std::nullopt;
        }
        frames.push_back(part.to_string());
    } while (part.more());
    return frames;
}

}  // namespace

RouterPeer::RouterPeer(const std::string& bindAddress, const std::string& curveSecretKey)
    : socket(context, zmq::socket_type::router) {
    socket.set(zmq::sockopt::linger, 0);
    socket.set(zmq::sockopt::ipv6, bindAddress.find('[') != std::string::npos);
    if (!curveSecretKey.empty()) {
        socket.set(zmq::sockopt::curve_server, true);
        socket.set(zmq::sockopt::curve_secretkey, curveSecretKey);
    }
    socket.bind(bindAddress);
    address = socket.get(zmq::sockopt::last_endpoint);
}

std::optional<Frames> RouterPeer::Receive(std::chrono::milliseconds limit) {
    return ReceiveFrames(socket, limit);
}

void RouterPeer::Send(const Frames& frames) {
    SendFrames(socket, frames);
}

void RouterPeer::Reply(const std::string& identity, int ticket, const std::string& header,
                       const std::string& payload) {
    Send({identity, TicketBytes(ticket), header, payload});
}

long RouterPeer::Flood(const Frames& frames, std::chrono::milliseconds duration,
                       const std::atomic<bool>& stop) {
    const auto end = std::chrono::steady_clock::now() + duration;
    long sent = 0;
    while (!stop.load() && std::chrono::steady_clock::now() < end) {
        for (int burst = 0; burst < 64; ++burst, ++sent) {
            SendFrames(socket, frames);
        }
    }
    return sent;
}

DealerPeer::DealerPeer(const std::string& endpoint, bool slow)
    : socket(context, zmq::socket_type::dealer) {
    socket.set(zmq::sockopt::linger, 0);
    if (slow) {
        socket.set(zmq::sockopt::rcvhwm, 1);
        socket.set(zmq::sockopt::rcvbuf, 4096);
    }
    socket.connect(endpoint);
}

void DealerPeer::Send(const Frames& frames) {
    SendFrames(socket, frames);
}

bool DealerPeer::TrySend(const Frames& frames) {
    // Once the first frame of a message is taken, ZeroMQ takes the rest.
    if (!socket.send(zmq::buffer(frames[0]), zmq::send_flags::dontwait |
                                                 (frames.size() > 1 ? zmq::send_flags::sndmore
                                                                    : zmq::send_flags::none))) {
        return false;
    }
    SendFrames(socket, Frames(frames.begin() + 1, frames.end()));
    return true;
}

Frames DealerPeer::Receive(std::chrono::milliseconds limit) {
    return ReceiveFrames(socket, limit).value_or(Frames{});
}

PublisherPeer::PublisherPeer(int sendHighWaterMark, bool waitForRoom)
    : socket(context, zmq::socket_type::xpub) {
    socket.set(zmq::sockopt::linger, 0);
    socket.set(zmq::sockopt::sndhwm, sendHighWaterMark);
    socket.set(zmq::sockopt::xpub_nodrop, waitForRoom);
    socket.bind("tcp://127.0.0.1:*");
    address = socket.get(zmq::sockopt::last_endpoint);
}

bool PublisherPeer::WaitForSubscriptions(const std::vector<std::string>& topics,
                                         std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    auto missing = [&] {
        return std::any_of(topics.begin(), topics.end(), [&](const std::string& topic) {
            return std::find(subscribed.begin(), subscribed.end(), topic) == subscribed.end();
        });
    };
    while (missing()) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) {
            return false;
        }
        socket.set(zmq::sockopt::rcvtimeo, static_cast<int>(left.count()));
        zmq::message_t message;
        // A subscription arrives as one frame: byte 1, then the topic.
        if (socket.recv(message) && message.size() > 0 && message.data<char>()[0] == 1) {
            subscribed.push_back(message.to_string().substr(1));
        }
    }
    return true;
}

void PublisherPeer::Publish(const std::string& topic, const std::string& header,
                            const std::string& payload) {
    PublishFrames({topic, header, payload});
}

void PublisherPeer::PublishFrames(const Frames& frames) {
    SendFrames(socket, frames);
}

TcpRelay::TcpRelay(int targetPort) : targetPort(targetPort) {
    listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in local{};
    local.sin_family = AF_INET;
    local.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof local;
    if (listener < 0 || ::bind(listener, reinterpret_cast<sockaddr*>(&local), length) != 0 ||
        ::listen(listener, 16) != 0 || ::pipe(stopPipe) != 0 ||
        ::getsockname(listener, reinterpret_cast<sockaddr*>(&local), &length) != 0) {
        throw std::runtime_error("TcpRelay: cannot listen");
    }
    port = ntohs(local.sin_port);
    thread = std::thread(&TcpRelay::Run, this);
}

TcpRelay::~TcpRelay() {
    const char stop = 's';
    [[maybe_unused]] const ssize_t written = ::write(stopPipe[1], &stop, 1);
    thread.join();
    for (const auto& [client, server] : connections) {
        ::close(client);
        ::close(server);
    }
    ::close(listener);
    ::close(stopPipe[0]);
    ::close(stopPipe[1]);
}

void TcpRelay::Run() {
    for (;;) {
        std::vector<pollfd> items{{stopPipe[0], POLLIN, 0}, {listener, POLLIN, 0}};
        const bool forwarding = !unplugged.load();
        if (forwarding) {
            for (const auto& [client, server] : connections) {
                items.push_back({client, POLLIN, 0});
                items.push_back({server, POLLIN, 0});
            }
        }
        ::poll(items.data(), items.size(), 50);  // short, so that Unplug takes effect promptly
        if (items[0].revents != 0) {
            return;
        }
        if (items[1].revents != 0) {
            const int client = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
            const int server = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
            sockaddr_in target{};
            target.sin_family = AF_INET;
            target.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            target.sin_port = htons(static_cast<std::uint16_t>(targetPort));
            if (!forwarding ||
                ::connect(server, reinterpret_cast<sockaddr*>(&target), sizeof target) == 0) {
                connections.emplace_back(client, server);  // while unplugged: held open, silent
            } else {
                ::close(client);
                ::close(server);
            }
        }
        if (!forwarding) {
            continue;
        }
        std::vector<bool> broken(connections.size(), false);
        for (std::size_t i = 2; i < items.size(); ++i) {
            if (items[i].revents == 0) {
                continue;
            }
            const auto& [client, server] = connections[(i - 2) / 2];
            const int from = items[i].fd;
            const int to = from == client ? server : client;
            char buffer[65536];
            const ssize_t got = ::read(from, buffer, sizeof buffer);
            if (got <= 0 || ::send(to, buffer, static_cast<std::size_t>(got), MSG_NOSIGNAL) != got) {
                broken[(i - 2) / 2] = true;
            }
        }
        for (std::size_t i = connections.size(); i-- > 0;) {
            if (broken[i]) {
                ::close(connections[i].first);
                ::close(connections[i].second);
                connections.erase(connections.begin() + static_cast<std::ptrdiff_t>(i));
            }
        }
    }
}

void StateLog::Record(ConnectionState state) {
    {
        std::lock_guard<std::mutex> lock(mutex);
        seen.push_back(state);
    }
    changed.notify_all();
}

bool StateLog::WaitFor(ConnectionState state, int times, std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> lock(mutex);
    return changed.wait_for(lock, limit,
                            [&] { return std::count(seen.begin(), seen.end(), state) >= times; });
}

std::vector<ConnectionState> StateLog::Seen() const {
    std::lock_guard<std::mutex> lock(mutex);
    return seen;
}

}  // namespace Korvo::Testing

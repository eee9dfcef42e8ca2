#include "support/Publisher.h"

#include <utility>

namespace Korvo::Bench {

Publisher::Publisher(std::string topic, std::string header, std::string payload)
    : socket(context, zmq::socket_type::xpub),
      topic(std::move(topic)),
      header(std::move(header)),
      payload(std::move(payload)) {
    socket.set(zmq::sockopt::linger, 0);
    socket.set(zmq::sockopt::sndhwm, 0);
    socket.bind("tcp://127.0.0.1:*");
    address = socket.get(zmq::sockopt::last_endpoint);
}

Publisher::~Publisher() {
    FinishBatch();
}

bool Publisher::WaitForSubscriber() {
    socket.set(zmq::sockopt::rcvtimeo, 10000);
    zmq::message_t subscription;
    return socket.recv(subscription).has_value();
}

void Publisher::StartBatch(std::size_t count) {
    FinishBatch();
    batch = std::thread([this, count] {
        for (std::size_t i = 0; i < count; ++i) {
            socket.send(zmq::buffer(topic), zmq::send_flags::sndmore);
            socket.send(zmq::buffer(header), zmq::send_flags::sndmore);
            socket.send(zmq::buffer(payload), zmq::send_flags::none);
        }
    });
}

void Publisher::FinishBatch() {
    if (batch.joinable()) {
        batch.join();
    }
}

}  // namespace Korvo::Bench

#include "support/PingResponder.h"

#include <array>
#include <atomic>

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/DataCommands_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Replies_types.h>

#include "support/BareThrift.h"

namespace Korvo::Bench {
namespace {

namespace Wire = Plexis::Tessel::Serialization::Thrift::Commands::Generated;

std::string StopAddress() {
    static std::atomic<unsigned> count{0};
    return "inproc://korvo-bench-responder-stop-" + std::to_string(++count);
}

// The reply to one command: its header and encoded record.
std::pair<std::string, std::string> Answer(const zmq::message_t& header,
                                           const zmq::message_t& payload) {
    if (header.to_string_view() == "PingCommand") {
        Wire::PingCommandParams ping;
        BareThrift::Decode(payload.data(), payload.size(), ping);
        Wire::SuccessReply reply;
        reply.__set_commandGuid(ping.commandGuid);
        return {"SuccessReply", BareThrift::Encode(reply)};
    }
    Wire::UnknownCommandReply reply;
    reply.__set_message("unknown command " + header.to_string());
    return {"UnknownCommand", BareThrift::Encode(reply)};
}

}  // namespace

PingResponder::PingResponder(zmq::context_t& context, const std::string& address)
    : context(context),
      router(context, zmq::socket_type::router),
      stopSender(context, zmq::socket_type::pair),
      stopReceiver(context, zmq::socket_type::pair) {
    router.set(zmq::sockopt::linger, 0);
    router.set(zmq::sockopt::sndhwm, 0);
    router.set(zmq::sockopt::rcvhwm, 0);
    router.bind(address);
    this->address = router.get(zmq::sockopt::last_endpoint);
    const std::string stop = StopAddress();
    stopReceiver.bind(stop);
    stopSender.connect(stop);
    thread = std::thread(&PingResponder::Run, this);
}

PingResponder::~PingResponder() {
    stopSender.send(zmq::str_buffer("stop"), zmq::send_flags::none);
    thread.join();
}

void PingResponder::Run() {
    std::array<zmq::pollitem_t, 2> items{
        {{router.handle(), 0, ZMQ_POLLIN, 0}, {stopReceiver.handle(), 0, ZMQ_POLLIN, 0}}};
    std::array<zmq::message_t, 4> frames;  // identity, ticket, header, payload
    for (;;) {
        zmq::poll(items.data(), items.size(), std::chrono::milliseconds(-1));
        if (items[1].revents != 0) {
            return;
        }
        // Answer everything queued before polling again.
        while (router.recv(frames[0], zmq::recv_flags::dontwait)) {
            std::size_t count = 1;
            bool more = frames[0].more();
            zmq::message_t extra;
            while (more) {
                zmq::message_t& part = count < frames.size() ? frames[count] : extra;
                (void)router.recv(part, zmq::recv_flags::none);
                more = part.more();
                ++count;
            }
            if (count != frames.size()) {
                continue;  // not a command envelope
            }
            auto [header, body] = Answer(frames[2], frames[3]);
            router.send(frames[0], zmq::send_flags::sndmore);
            router.send(frames[1], zmq::send_flags::sndmore);
            router.send(zmq::buffer(header), zmq::send_flags::sndmore);
            router.send(zmq::buffer(body), zmq::send_flags::none);
        }
    }
}

}  // namespace Korvo::Bench

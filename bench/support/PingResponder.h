#pragma once

// The server end of the command benchmarks, kept in this one file so that the replay-server
// simulator can take its place: a ROUTER socket answered by a thread of its own.

#include <string>
#include <thread>

#include <zmq.hpp>

namespace Korvo::Bench {

/// Answers every "PingCommand" with a "SuccessReply" carrying the command's identifier, and any
/// other command with an "UnknownCommand" reply, both encoded as the server encodes them (the
/// generated records). Replies go out in the order the commands arrived.
class PingResponder {
public:
    /// Binds a ROUTER in `context` to `address` ("tcp://127.0.0.1:*" or an inproc name) and
    /// starts answering. Throws `zmq::error_t` when the address cannot be bound.
    PingResponder(zmq::context_t& context, const std::string& address);

    /// Stops the thread and closes the sockets.
    ~PingResponder();

    PingResponder(const PingResponder&) = delete;
    PingResponder& operator=(const PingResponder&) = delete;

    /// The bound address, with the port the system chose.
    const std::string& Address() const { return address; }

private:
    void Run();

    zmq::context_t& context;
    zmq::socket_t router;
    zmq::socket_t stopSender;
    zmq::socket_t stopReceiver;
    std::string address;
    std::thread thread;
};

}  // namespace Korvo::Bench

#pragma once

// The pieces both sides of a command benchmark share: the library's client wired to the
// responder, and the bare DEALER socket of the baseline.

#include <memory>
#include <string>

#include <zmq.hpp>

#include <Korvo/Plexis/Tessel/Client/CommandClient.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PingCommandParams.h>

namespace Korvo::Bench {

/// A command client over the ZeroMQ messenger, connected to `address`, with the data command
/// builders; nullptr when the link did not come up within ten seconds.
std::unique_ptr<Plexis::Tessel::Client::CommandClient> ConnectedClient(const std::string& address);

/// The ping every benchmark sends.
const Plexis::Tessel::HighLevelOperations::Commands::PingCommandParams& Ping();

/// One ping round trip through `client`; false unless a success reply came back.
bool PingThrough(Plexis::Tessel::Client::CommandClient& client);

/// The bare baseline: a DEALER socket that sends the same three frames the messenger sends
/// ([ticket][PingCommand][payload], the payload encoded with the generated record) and decodes
/// the reply's record.
class BareDealer {
public:
    BareDealer(zmq::context_t& context, const std::string& address);

    /// Sends one ping under the next ticket.
    void Send();

    /// Receives one reply and decodes it; false unless it was a success reply.
    bool Receive();

    /// One round trip.
    bool RoundTrip() { return Send(), Receive(); }

private:
    zmq::socket_t socket;
    std::string payload;
    int ticket = 0;
};

}  // namespace Korvo::Bench

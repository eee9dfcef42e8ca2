#pragma once

#include <memory>
#include <string>

#include <zmq.hpp>

namespace Korvo::Common::Messaging::Detail {

/// The process's ZeroMQ context, shared by every messenger and subscription: one I/O thread for
/// all of them instead of one per object. Made on first use; terminated when the last holder lets
/// go, which every holder does only after closing its sockets. Any thread.
std::shared_ptr<zmq::context_t> SharedZmqContext();

/// Checks that `count` more file descriptors can be opened now, and throws `TransportException`
/// naming the shortage when they cannot. ZeroMQ ends the process when it cannot get a descriptor
/// for a socket or for its own threads, so whoever makes sockets asks first. `what` begins the
/// message ("cannot connect to tcp://..."). Any thread.
void RequireDescriptors(int count, const std::string& what);

}  // namespace Korvo::Common::Messaging::Detail

#pragma once

#include <memory>

#include <zmq.hpp>

namespace Korvo::Common::Messaging::Detail {

/// The process's ZeroMQ context, shared by every messenger and subscription: one I/O thread for
/// all of them instead of one per object. Made on first use; terminated when the last holder lets
/// go, which every holder does only after closing its sockets. Any thread.
std::shared_ptr<zmq::context_t> SharedZmqContext();

}  // namespace Korvo::Common::Messaging::Detail

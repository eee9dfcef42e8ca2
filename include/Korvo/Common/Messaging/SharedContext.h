#pragma once

#include <memory>

namespace Korvo::Common::Messaging {

/// The ZeroMQ context (a `void*` for the `zmq_*` functions) in which every `Client::Messenger` and
/// `Client::Subscription` of the process creates its sockets: made on first use, terminated when
/// the last holder releases it. Only needed to reach them over `inproc://`, whose peer must live
/// in the same context: hold the pointer while such sockets exist and close them before letting
/// go. Any thread.
std::shared_ptr<void> SharedContext();

}  // namespace Korvo::Common::Messaging

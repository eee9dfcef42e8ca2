#include "messaging/ZmqContext.h"

#include <mutex>

#include <Korvo/Common/Messaging/SharedContext.h>

namespace Korvo::Common::Messaging {
namespace Detail {

std::shared_ptr<zmq::context_t> SharedZmqContext() {
    static std::mutex mutex;
    static std::weak_ptr<zmq::context_t> current;
    std::lock_guard<std::mutex> lock(mutex);
    std::shared_ptr<zmq::context_t> context = current.lock();
    if (!context) {
        context = std::make_shared<zmq::context_t>();
        // Terminating the context must never wait for unsent messages: every socket has linger 0,
        // and this makes the same true for any socket an application creates in it.
        context->set(zmq::ctxopt::blocky, false);
        current = context;
    }
    return context;
}

}  // namespace Detail

std::shared_ptr<void> SharedContext() {
    std::shared_ptr<zmq::context_t> context = Detail::SharedZmqContext();
    return std::shared_ptr<void>(context, context->handle());
}

}  // namespace Korvo::Common::Messaging

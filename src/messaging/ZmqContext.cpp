#include "messaging/ZmqContext.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <mutex>
#include <vector>

#include <Korvo/Common/Messaging/TransportException.h>

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

void RequireDescriptors(int count, const std::string& what) {
    std::vector<int> taken;
    int error = 0;
    for (int i = 0; i < count; ++i) {
        const int fd = ::eventfd(0, EFD_CLOEXEC);
        if (fd < 0) {
            error = errno;
            break;
        }
        taken.push_back(fd);
    }
    for (const int fd : taken) {
        ::close(fd);
    }
    if (error != 0) {
        throw TransportException(what + ": too few file descriptors: " + std::to_string(count) +
                                 " more are needed and only " + std::to_string(taken.size()) +
                                 " can be opened (" + std::strerror(error) +
                                 "); raise the limit (ulimit -n) or close some");
    }
}

}  // namespace Detail

std::shared_ptr<void> SharedContext() {
    std::shared_ptr<zmq::context_t> context = Detail::SharedZmqContext();
    return std::shared_ptr<void>(context, context->handle());
}

}  // namespace Korvo::Common::Messaging

#include "messaging/WakeSignal.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>

#include <Korvo/Common/Messaging/TransportException.h>

namespace Korvo::Common::Messaging::Detail {

WakeSignal::WakeSignal() : fd(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (fd < 0) {
        throw TransportException(std::string("cannot create a wake-up descriptor: ") +
                                 std::strerror(errno));
    }
}

WakeSignal::~WakeSignal() {
    ::close(fd);
}

void WakeSignal::Notify() noexcept {
    const std::uint64_t one = 1;
    // Only fails when the counter would overflow, and then the descriptor is readable anyway.
    [[maybe_unused]] const ssize_t written = ::write(fd, &one, sizeof one);
}

void WakeSignal::Drain() noexcept {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t read = ::read(fd, &count, sizeof count);
}

}  // namespace Korvo::Common::Messaging::Detail

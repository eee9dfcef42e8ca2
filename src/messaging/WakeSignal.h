#pragma once

namespace Korvo::Common::Messaging::Detail {

/// A file descriptor that a thread waiting in poll() can be woken through: `Notify` makes it
/// readable until someone calls `Drain`. Any thread may call `Notify`; `Drain` belongs to the
/// waiting thread.
class WakeSignal {
public:
    /// Throws `TransportException` when the descriptor cannot be made.
    WakeSignal();
    ~WakeSignal();

    WakeSignal(const WakeSignal&) = delete;
    WakeSignal& operator=(const WakeSignal&) = delete;

    void Notify() noexcept;
    void Drain() noexcept;
    int Fd() const noexcept { return fd; }

private:
    int fd;
};

}  // namespace Korvo::Common::Messaging::Detail

#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace Korvo::Plexis::Tessel::Client {

/// A blocking first-in, first-out queue: the reception thread pushes the messages of one request,
/// the thread waiting for the reply pops them. Any number of threads may push and pop.
///
/// `closed` is only a mark kept for the producer (no further partial message may be queued once
/// the final reply arrived or the request was cancelled); the queue itself keeps working.
template <class T>
class ConcurrentQueue {
public:
    /// Appends `item` and wakes one waiter. The waiter is woken after the lock is released, so it
    /// does not wake only to block on the mutex.
    void Push(T item) {
        {
            std::lock_guard<std::mutex> lock(mutex);
            items.push_back(std::move(item));
        }
        condition.notify_one();
    }

    /// Takes the oldest item, waiting as long as it takes for one.
    T Pop() {
        std::unique_lock<std::mutex> lock(mutex);
        condition.wait(lock, [this] { return !items.empty(); });
        return TakeFront();
    }

    /// Takes the oldest item, waiting at most `timeout`; empty when none arrived in time.
    template <class Rep, class Period>
    std::optional<T> Pop(std::chrono::duration<Rep, Period> timeout) {
        std::unique_lock<std::mutex> lock(mutex);
        if (!condition.wait_for(lock, timeout, [this] { return !items.empty(); })) {
            return std::nullopt;
        }
        return TakeFront();
    }

    /// Takes the oldest item if there is one, without waiting.
    std::optional<T> TryPop() {
        std::lock_guard<std::mutex> lock(mutex);
        if (items.empty()) {
            return std::nullopt;
        }
        return TakeFront();
    }

    /// Takes every item at once, without waiting.
    std::deque<T> TakeAll() {
        std::lock_guard<std::mutex> lock(mutex);
        return std::exchange(items, std::deque<T>());
    }

    /// Sets the closed mark; returns whether it was already set.
    bool Close() noexcept { return closed.exchange(true); }

    /// Whether the closed mark is set. Lock-free.
    bool IsClosed() const noexcept { return closed.load(); }

    /// Number of items waiting.
    std::size_t Size() const {
        std::lock_guard<std::mutex> lock(mutex);
        return items.size();
    }

private:
    T TakeFront() {
        T item = std::move(items.front());
        items.pop_front();
        return item;
    }

    std::atomic<bool> closed{false};
    mutable std::mutex mutex;
    std::condition_variable condition;
    std::deque<T> items;
};

}  // namespace Korvo::Plexis::Tessel::Client

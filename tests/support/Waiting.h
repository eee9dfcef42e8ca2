#pragma once

// Bounded waits for tests that cross threads: generous limits, never a bare sleep.

#include <chrono>
#include <functional>
#include <thread>

namespace Korvo::Testing {

/// How long a test waits for anything that should happen: long enough for a loaded 2-core
/// machine under a sanitizer, short enough that a hang fails the run.
inline constexpr std::chrono::milliseconds kPatience{30000};

/// Checks `condition` until it holds, at most `limit`; whether it did. For what no event tells,
/// such as a counter or a count in a log.
inline bool Eventually(const std::function<bool()>& condition,
                       std::chrono::milliseconds limit = kPatience) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

}  // namespace Korvo::Testing

#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>

namespace Korvo::Plexis::Tessel::Logging {

// Lets a repeated log line through at most `burst` times per `window`, and counts the ones it
// holds back so that the next line let through can say how many were suppressed. Thread-safe;
// its lock is a leaf (nothing is called under it), so it may be used under any library lock.
//
//     static RateLimit limit;                     // one per kind of line
//     if (auto suppressed = limit.Admit()) {      // engaged: write the line now
//         LogComposed(logger, 50, [&] { return text + Suppressed(*suppressed); }, ...);
//     }
class RateLimit {
public:
    using Clock = std::chrono::steady_clock;

    struct Admission {
        bool admitted;
        std::uint64_t suppressed;  // lines held back since the last admitted one
        explicit operator bool() const noexcept { return admitted; }
        std::uint64_t operator*() const noexcept { return suppressed; }
    };

    explicit RateLimit(int burst = 3, Clock::duration window = std::chrono::seconds(1)) noexcept
        : burst(burst), window(window) {}

    Admission Admit(Clock::time_point now = Clock::now()) noexcept {
        std::lock_guard<std::mutex> lock(mutex);
        if (now - windowStart >= window) {
            windowStart = now;
            inWindow = 0;
        }
        if (inWindow < burst) {
            ++inWindow;
            const auto count = held;
            held = 0;
            return {true, count};
        }
        ++held;
        return {false, 0};
    }

private:
    const int burst;
    const Clock::duration window;
    std::mutex mutex;
    Clock::time_point windowStart{};
    int inWindow = 0;
    std::uint64_t held = 0;
};

// The tail appended to a line that follows suppressed repeats: "" or " (N similar lines
// suppressed)".
inline std::string Suppressed(std::uint64_t count) {
    return count == 0 ? std::string()
                      : " (" + std::to_string(count) + " similar lines suppressed)";
}

}  // namespace Korvo::Plexis::Tessel::Logging

#include "support/Measure.h"

#include <sys/resource.h>
#include <time.h>

#include <thread>

namespace Korvo::Bench {

double ProcessCpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double ProcessContextSwitches() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_nvcsw) + static_cast<double>(usage.ru_nivcsw);
}

bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const Clock::time_point deadline = Clock::now() + limit;
    while (!condition()) {
        if (Clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace Korvo::Bench

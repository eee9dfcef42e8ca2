#include "messaging/FaultInjection.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace Korvo::Common::Messaging::Detail {
namespace {

struct Installed {
    std::atomic<bool> any{false};
    std::mutex mutex;
    std::shared_ptr<const FaultHook> hook;
};

Installed& Hooks() {
    static Installed installed;
    return installed;
}

}  // namespace

void SetFaultHook(FaultHook hook) {
    Installed& installed = Hooks();
    std::lock_guard<std::mutex> lock(installed.mutex);
    installed.hook = hook ? std::make_shared<const FaultHook>(std::move(hook)) : nullptr;
    installed.any.store(installed.hook != nullptr);
}

void InjectFault(FaultPoint point, const std::string& address) {
    Installed& installed = Hooks();
    if (!installed.any.load(std::memory_order_relaxed)) {
        return;
    }
    std::shared_ptr<const FaultHook> hook;
    {
        std::lock_guard<std::mutex> lock(installed.mutex);
        hook = installed.hook;
    }
    if (hook) {
        (*hook)(point, address);  // outside the lock: the hook may block or throw
    }
}

}  // namespace Korvo::Common::Messaging::Detail

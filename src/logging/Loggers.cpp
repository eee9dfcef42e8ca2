#include <Korvo/Plexis/Tessel/Logging/Loggers.h>

namespace Korvo::Plexis::Tessel::Logging {

Loggers& Loggers::GetInstance() {
    static Loggers instance;
    return instance;
}

Loggers::~Loggers() {
    loggers.clear();
    factory.reset();
}

std::shared_ptr<ILogger> Loggers::GetLogger(const std::string& name) {
    if (!hasFactory.load(std::memory_order_acquire)) {
        return {};
    }
    std::lock_guard<std::mutex> lock(mutex);
    auto found = loggers.find(name);
    if (found != loggers.end()) {
        return found->second;
    }
    std::shared_ptr<ILogger> logger = factory->CreateLogger(name);
    loggers.emplace(name, logger);
    logger->SetLevel(level.load(std::memory_order_relaxed));
    return logger;
}

ILogger::Level Loggers::GetLoggingLevel() const {
    return level.load(std::memory_order_relaxed);
}

void Loggers::SetLoggingLevel(ILogger::Level newLevel) {
    level.store(newLevel, std::memory_order_relaxed);
    UpdateLoggersLevel();
}

void Loggers::SetLoggerFactory(std::unique_ptr<ILoggerFactory>&& newFactory) {
    std::unique_ptr<ILoggerFactory> previous;
    {
        std::lock_guard<std::mutex> lock(mutex);
        previous = std::move(factory);
        factory = std::move(newFactory);
        hasFactory.store(factory != nullptr, std::memory_order_release);
    }
    // The old factory is destroyed outside the lock, so its destructor may use the registry.
}

void Loggers::UpdateLoggersLevel() {
    std::lock_guard<std::mutex> lock(mutex);
    const ILogger::Level current = level.load(std::memory_order_relaxed);
    for (auto& entry : loggers) {
        entry.second->SetLevel(current);
    }
}

}  // namespace Korvo::Plexis::Tessel::Logging

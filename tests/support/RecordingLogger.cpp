#include "support/RecordingLogger.h"

#include <stdexcept>

#include <Korvo/Plexis/Tessel/Logging/Loggers.h>

namespace Korvo::Testing {

std::shared_ptr<RecordingLogger> RecordedLogger(const std::string& name, ILogger::Level level) {
    auto& registry = Plexis::Tessel::Logging::Loggers::GetInstance();
    static const bool installed = [&registry] {
        registry.SetLoggerFactory(std::make_unique<RecordingLoggerFactory>());
        return true;
    }();
    (void)installed;
    auto logger = std::dynamic_pointer_cast<RecordingLogger>(registry.GetLogger(name));
    if (!logger) {
        throw std::logic_error("the registry's logger '" + name + "' is not a RecordingLogger");
    }
    logger->Clear();
    logger->SetLevel(level);
    logger->SetDelay(std::chrono::microseconds(0));
    return logger;
}

}  // namespace Korvo::Testing

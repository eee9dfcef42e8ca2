#pragma once

#include <memory>
#include <string>

#include <Korvo/Plexis/Tessel/Logging/ILogger.h>

namespace Korvo::Plexis::Tessel::Logging {

// The guard every library log call goes through: nothing happens without a logger, a message is
// composed only when the logger's level lets it through, and a logger that throws never takes
// the caller down with it.

inline bool IsEnabled(const std::shared_ptr<ILogger>& logger, ILogger::Level level) {
    return logger && logger->GetLevel() <= level;
}

inline void Log(const std::shared_ptr<ILogger>& logger, ILogger::Level level, const char* text,
                const char* sourceFile, int line) noexcept {
    try {
        if (IsEnabled(logger, level)) {
            logger->Log(level, text, sourceFile, line);
        }
    } catch (...) {
    }
}

// `compose` is called, and its std::string result logged, only when the message will be written.
template <class Compose>
void LogComposed(const std::shared_ptr<ILogger>& logger, ILogger::Level level, Compose&& compose,
                 const char* sourceFile, int line) noexcept {
    try {
        if (IsEnabled(logger, level)) {
            logger->Log(level, std::string(compose()), sourceFile, line);
        }
    } catch (...) {
    }
}

}  // namespace Korvo::Plexis::Tessel::Logging

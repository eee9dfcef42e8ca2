#pragma once

#include <memory>
#include <string>

#include <Korvo/Plexis/Tessel/Logging/ILogger.h>

namespace Korvo::Plexis::Tessel::Logging {

// Guarded writing to an `ILogger`: nothing happens without a logger, a message is composed only
// when the logger's level lets it through, and a logger that throws never takes the caller down
// with it. Any thread.

/// Whether `logger` exists and writes messages of `level`.
inline bool IsEnabled(const std::shared_ptr<ILogger>& logger, ILogger::Level level) {
    return logger && logger->GetLevel() <= level;
}

/// Writes `text` at `level`, naming `sourceFile` and `line`, when `IsEnabled`.
inline void Log(const std::shared_ptr<ILogger>& logger, ILogger::Level level, const char* text,
                const char* sourceFile, int line) noexcept {
    try {
        if (IsEnabled(logger, level)) {
            logger->Log(level, text, sourceFile, line);
        }
    } catch (...) {
    }
}

/// Calls `compose` and writes its result (a std::string) only when `IsEnabled`.
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

/// `Log` and `LogComposed` with the source location filled in: the source path is the `kSource`
/// (a `const char*`) that the calling file defines once, the line is the line of the call.
#define KORVO_LOG(logger, level, text) \
    ::Korvo::Plexis::Tessel::Logging::Log((logger), (level), (text), kSource, __LINE__)
#define KORVO_LOG_COMPOSED(logger, level, ...) \
    ::Korvo::Plexis::Tessel::Logging::LogComposed((logger), (level), __VA_ARGS__, kSource, __LINE__)

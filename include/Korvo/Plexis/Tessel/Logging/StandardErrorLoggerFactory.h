#pragma once

#include <memory>
#include <string>

#include <Korvo/Plexis/Tessel/Logging/ILoggerFactory.h>

namespace Korvo::Plexis::Tessel::Logging {

/// A ready-made factory whose loggers write one line per message to standard error:
///
///     2026-11-21T05:53:33.123Z WARNING CommandClient: Stop called with ... (Korvo/...:123)
///
/// The time is UTC with milliseconds; the level is its name (TRACE, DEBUG, INFO, WARNING, ERROR,
/// FATAL) or its number when it has none. Each line is written with one call, so lines from
/// several threads never interleave.
class StandardErrorLoggerFactory final : public ILoggerFactory {
public:
    std::unique_ptr<ILogger> CreateLogger(const std::string& name) override;

    /// The name printed for `level`: "WARNING" for 40, the decimal number for unnamed levels.
    static std::string LevelName(ILogger::Level level);

    /// Formats one line exactly as the loggers write it (with a trailing newline).
    static std::string FormatLine(const std::string& timestamp, ILogger::Level level,
                                  const std::string& loggerName, const std::string& message,
                                  const char* sourceFile, int line);
};

}  // namespace Korvo::Plexis::Tessel::Logging

#include <Korvo/Plexis/Tessel/Logging/StandardErrorLoggerFactory.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>

namespace Korvo::Plexis::Tessel::Logging {
namespace {

std::string UtcTimestamp() {
    using namespace std::chrono;
    const auto now = system_clock::now();
    const std::time_t seconds = system_clock::to_time_t(now);
    const auto millis = duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", parts.tm_year + 1900,
                  parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                  static_cast<int>(millis));
    return text;
}

class StandardErrorLogger final : public ILogger {
public:
    explicit StandardErrorLogger(std::string name) : name(std::move(name)) {}

    void Log(Level messageLevel, const char* message, const char* sourceFile, int line) override {
        Log(messageLevel, std::string(message ? message : ""), sourceFile, line);
    }

    void Log(Level messageLevel, const std::string& message, const char* sourceFile,
             int line) override {
        if (messageLevel < level.load(std::memory_order_relaxed)) {
            return;
        }
        const std::string text = StandardErrorLoggerFactory::FormatLine(
            UtcTimestamp(), messageLevel, name, message, sourceFile, line);
        std::fwrite(text.data(), 1, text.size(), stderr);
    }

    void SetLevel(Level newLevel) override { level.store(newLevel, std::memory_order_relaxed); }

    const Level& GetLevel() const override {
        // The interface hands out a reference; give each thread its own snapshot of the atomic
        // so that a level change on another thread is never a data race.
        thread_local Level snapshot;
        snapshot = level.load(std::memory_order_relaxed);
        return snapshot;
    }

private:
    const std::string name;
    std::atomic<Level> level{Warning};
};

}  // namespace

std::unique_ptr<ILogger> StandardErrorLoggerFactory::CreateLogger(const std::string& name) {
    return std::make_unique<StandardErrorLogger>(name);
}

std::string StandardErrorLoggerFactory::LevelName(ILogger::Level level) {
    switch (level) {
        case ILogger::Trace:
            return "TRACE";
        case ILogger::Debug:
            return "DEBUG";
        case ILogger::Info:
            return "INFO";
        case ILogger::Warning:
            return "WARNING";
        case ILogger::Error:
            return "ERROR";
        case ILogger::Fatal:
            return "FATAL";
    }
    return std::to_string(static_cast<std::int32_t>(level));
}

std::string StandardErrorLoggerFactory::FormatLine(const std::string& timestamp,
                                                   ILogger::Level level,
                                                   const std::string& loggerName,
                                                   const std::string& message,
                                                   const char* sourceFile, int line) {
    std::string text;
    text.reserve(timestamp.size() + loggerName.size() + message.size() + 64);
    text += timestamp;
    text += ' ';
    text += LevelName(level);
    text += ' ';
    text += loggerName;
    text += ": ";
    text += message;
    text += " (";
    text += sourceFile ? sourceFile : "?";
    text += ':';
    text += std::to_string(line);
    text += ")\n";
    return text;
}

}  // namespace Korvo::Plexis::Tessel::Logging

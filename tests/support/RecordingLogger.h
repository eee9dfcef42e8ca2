#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <Korvo/Plexis/Tessel/Logging/ILogger.h>
#include <Korvo/Plexis/Tessel/Logging/ILoggerFactory.h>

namespace Korvo::Testing {

using Plexis::Tessel::Logging::ILogger;

/// One message a RecordingLogger received.
struct LogRecord {
    ILogger::Level level;
    std::string text;
    std::string sourceFile;
    int line;
};

/// A logger that keeps every message it lets through, for tests to inspect. Thread-safe.
class RecordingLogger final : public ILogger {
public:
    explicit RecordingLogger(std::string name) : name(std::move(name)) {}

    void Log(Level level, const char* message, const char* sourceFile, int line) override {
        Log(level, std::string(message), sourceFile, line);
    }

    void Log(Level messageLevel, const std::string& message, const char* sourceFile,
             int line) override {
        std::this_thread::sleep_for(std::chrono::microseconds(delay.load()));
        std::lock_guard<std::mutex> lock(mutex);
        records.push_back({messageLevel, message, sourceFile ? sourceFile : "", line});
    }

    /// Makes every line take `perLine` to write, like a slow sink.
    void SetDelay(std::chrono::microseconds perLine) { delay.store(perLine.count()); }

    void SetLevel(Level newLevel) override { level.store(newLevel); }

    const Level& GetLevel() const override {
        thread_local Level snapshot;
        snapshot = level.load();
        return snapshot;
    }

    const std::string& Name() const { return name; }

    std::vector<LogRecord> Records() const {
        std::lock_guard<std::mutex> lock(mutex);
        return records;
    }

    /// The texts of the records, in order.
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        for (const auto& record : Records()) {
            texts.push_back(record.text);
        }
        return texts;
    }

    /// Whether a record with exactly this level and text was kept.
    bool Has(Level messageLevel, const std::string& text) const {
        for (const auto& record : Records()) {
            if (record.level == messageLevel && record.text == text) {
                return true;
            }
        }
        return false;
    }

    void Clear() {
        std::lock_guard<std::mutex> lock(mutex);
        records.clear();
    }

private:
    const std::string name;
    std::atomic<Level> level{Warning};
    std::atomic<long long> delay{0};
    mutable std::mutex mutex;
    std::vector<LogRecord> records;
};

/// How many records of `log` contain `text`.
inline int CountLogged(const RecordingLogger& log, const std::string& text) {
    int count = 0;
    for (const auto& record : log.Texts()) {
        count += record.find(text) != std::string::npos ? 1 : 0;
    }
    return count;
}

/// Makes RecordingLoggers and counts how often it was asked.
class RecordingLoggerFactory final : public Plexis::Tessel::Logging::ILoggerFactory {
public:
    std::unique_ptr<ILogger> CreateLogger(const std::string& name) override {
        ++created;
        return std::make_unique<RecordingLogger>(name);
    }

    std::atomic<int> created{0};
};

/// The process-wide registry's logger for `name`, made a RecordingLogger: installs a
/// RecordingLoggerFactory on first use, empties the logger, sets its level and makes it fast.
std::shared_ptr<RecordingLogger> RecordedLogger(const std::string& name, ILogger::Level level);

}  // namespace Korvo::Testing

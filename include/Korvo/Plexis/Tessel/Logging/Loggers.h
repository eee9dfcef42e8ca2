#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include <Korvo/Plexis/Tessel/Logging/ILogger.h>
#include <Korvo/Plexis/Tessel/Logging/ILoggerFactory.h>

namespace Korvo::Plexis::Tessel::Logging {

/// The process-wide registry of named loggers.
///
/// Rules: without a factory every `GetLogger` returns an empty pointer and nothing is stored. With
/// one, the first `GetLogger(name)` asks the factory for a logger, keeps it, gives it the current
/// level and returns it; later calls with that name return the same logger for the life of the
/// process, even after the factory is replaced. `SetLoggingLevel` changes the level given to new
/// loggers and pushes it into every logger made so far. Library objects ask for their logger once,
/// at construction, so install the factory and set the level before creating clients.
class Loggers {
public:
    /// The single registry, made on first use and destroyed at process exit. Thread-safe.
    static Loggers& GetInstance();

    /// The logger named `name`, made by the factory on first request; an empty pointer while no
    /// factory is installed. Thread-safe. Exceptions from the factory pass through.
    std::shared_ptr<ILogger> GetLogger(const std::string& name);

    /// The level given to new loggers; 40 (`ILogger::Warning`) until changed. Takes no lock.
    ILogger::Level GetLoggingLevel() const;

    /// Stores `level` and pushes it into every logger already made.
    void SetLoggingLevel(ILogger::Level level);

    /// Installs the factory used for names not asked for before, destroying the previous one.
    /// Loggers already made are kept unchanged.
    void SetLoggerFactory(std::unique_ptr<ILoggerFactory>&& factory);

    /// Calls `SetLevel` with the current level on every logger made, in name order, under the
    /// registry's lock.
    void UpdateLoggersLevel();

    Loggers(const Loggers&) = delete;
    Loggers& operator=(const Loggers&) = delete;

    /// Destroys the loggers map (dropping the registry's references), then the factory.
    ~Loggers();

protected:
    /// Only the single instance is made in a program; tests derive to get fresh registries.
    Loggers() = default;

private:
    std::unique_ptr<ILoggerFactory> factory;
    std::atomic<ILogger::Level> level{ILogger::Warning};
    std::map<std::string, std::shared_ptr<ILogger>> loggers;
    std::mutex mutex;
    // Lets GetLogger answer "no factory" without the lock; the factory itself is read and
    // replaced under `mutex` so that a late SetLoggerFactory never frees a factory in use.
    std::atomic<bool> hasFactory{false};
};

}  // namespace Korvo::Plexis::Tessel::Logging

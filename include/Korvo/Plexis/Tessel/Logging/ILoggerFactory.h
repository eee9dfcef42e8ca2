#pragma once

#include <memory>
#include <string>

#include <Korvo/Plexis/Tessel/Logging/ILogger.h>

namespace Korvo::Plexis::Tessel::Logging {

/// Makes the named loggers that the registry hands out; implemented by the application and
/// installed with `Loggers::SetLoggerFactory`.
class ILoggerFactory {
public:
    virtual ~ILoggerFactory() = default;

    /// Makes the logger for `name` ("CommandClient", "NotificationClient", ...). Called at most
    /// once per name, under the registry's lock. Must not return an empty pointer.
    virtual std::unique_ptr<ILogger> CreateLogger(const std::string& name) = 0;
};

}  // namespace Korvo::Plexis::Tessel::Logging

#pragma once

#include <cstdint>
#include <string>

namespace Korvo::Plexis::Tessel::Logging {

/// A named sink for the library's log messages, implemented by the application.
///
/// The library calls a logger from any of its threads (application threads calling into the
/// library and the library's own background threads), so implementations must be thread-safe.
/// A logger should not throw; the library swallows anything a logger throws.
class ILogger {
public:
    /// Severity of a message. A message is written when its level is greater than or equal to
    /// the logger's level. Any other 32-bit value is allowed and orders numerically.
    enum Level : std::int32_t {
        Trace = 10,  ///< per-message tracing; the notification loop's end
        Debug = 20,
        Info = 30,     ///< life-cycle events: start, stop
        Warning = 40,  ///< the registry's default level
        Error = 50,    ///< one operation failed, the component goes on
        Fatal = 60,    ///< the transport failed; the component stops
    };

    virtual ~ILogger() = default;

    /// Writes one message. `sourceFile` and `line` name where in the library it was raised.
    virtual void Log(Level level, const char* message, const char* sourceFile, int line) = 0;

    /// Writes one composed message; same contract as the overload above.
    virtual void Log(Level level, const std::string& message, const char* sourceFile, int line) = 0;

    /// Changes the threshold below which messages are not written.
    virtual void SetLevel(Level level) = 0;

    /// The threshold. Callers compare against it before composing a message.
    virtual const Level& GetLevel() const = 0;
};

}  // namespace Korvo::Plexis::Tessel::Logging

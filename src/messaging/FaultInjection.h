#pragma once

#include <functional>
#include <string>

namespace Korvo::Common::Messaging::Detail {

/// Steps of the messaging layer where a test can make a failure happen that is hard to cause from
/// outside: memory running out, a failing poll, a socket that cannot be made or read.
enum class FaultPoint {
    OpenSocket,    ///< making a link's socket (the address is the link's endpoint)
    TakeFromLink,  ///< a subscription's pump reading one link (the address is its endpoint)
    PumpWait,      ///< a subscription's pump waiting for input (no address)
    PumpQueue,     ///< a subscription's pump queueing a notification (the address it came from)
};

/// Called at every fault point while installed; what it throws is what that step throws.
using FaultHook = std::function<void(FaultPoint point, const std::string& address)>;

/// Installs `hook` for the whole process; an empty hook removes it. For tests only.
void SetFaultHook(FaultHook hook);

/// Calls the installed hook, if any. Without one it costs a single atomic load.
void InjectFault(FaultPoint point, const std::string& address);

}  // namespace Korvo::Common::Messaging::Detail

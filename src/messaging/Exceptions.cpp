#include <Korvo/Common/Messaging/Exception.h>
#include <Korvo/Common/Messaging/ObjectShutDownException.h>
#include <Korvo/Common/Messaging/TransportException.h>

namespace Korvo::Common::Messaging {

// Out of line so that the exceptions' type information lives in this library: catching them by
// type works the same in every module of the process.
Exception::~Exception() = default;
TransportException::~TransportException() = default;
ObjectShutDownException::~ObjectShutDownException() = default;

}  // namespace Korvo::Common::Messaging

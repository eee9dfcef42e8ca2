#pragma once

#include <Korvo/Common/Messaging/Exception.h>

namespace Korvo::Common::Messaging {

/// The transport failed (a socket error, a refused configuration); `what()` says how.
class TransportException : public Exception {
public:
    using Exception::Exception;
    ~TransportException() override;
};

}  // namespace Korvo::Common::Messaging

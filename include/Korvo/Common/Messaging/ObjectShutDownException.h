#pragma once

#include <Korvo/Common/Messaging/Exception.h>

namespace Korvo::Common::Messaging {

/// The object was shut down before, or while, the operation ran.
class ObjectShutDownException : public Exception {
public:
    using Exception::Exception;
    ~ObjectShutDownException() override;
};

}  // namespace Korvo::Common::Messaging

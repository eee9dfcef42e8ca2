#pragma once

#include <Korvo/Common/Serialization/Exception.h>

namespace Korvo::Common::Serialization {

/// Thrown by the deserializer when bytes cannot be parsed as the expected record; the message is
/// "The input could not be parsed by the deserializer".
class InvalidFormatException : public Exception {
public:
    using Exception::Exception;
};

}  // namespace Korvo::Common::Serialization

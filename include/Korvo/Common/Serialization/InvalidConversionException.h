#pragma once

#include <Korvo/Common/Serialization/Exception.h>

namespace Korvo::Common::Serialization {

/// Thrown when a converter reports failure; the message is the converter's.
class InvalidConversionException : public Exception {
public:
    using Exception::Exception;
};

}  // namespace Korvo::Common::Serialization

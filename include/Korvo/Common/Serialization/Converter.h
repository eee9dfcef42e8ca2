#pragma once

#include <Korvo/Common/Serialization/ConversionResult.h>

namespace Korvo::Common::Serialization {

/// Converts a domain object into a wire record or back. Converters are stateless: one object may
/// serve any number of conversions on any number of threads at once.
template <class From, class Into>
class Converter {
public:
    virtual ~Converter() = default;

    /// Fills `target` from `source` field by field. On failure the result says why and `target`
    /// is left partly filled.
    virtual ConversionResult To(const From& source, Into& target) const = 0;

    /// The same, allowed to move strings and containers out of `source`.
    virtual ConversionResult To(From&& source, Into& target) const = 0;

    /// Kept for callers that ask after the fact; converters report through `ConversionResult`.
    virtual const char* GetLastConversionError() const { return ""; }
};

}  // namespace Korvo::Common::Serialization

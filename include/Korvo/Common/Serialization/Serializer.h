#pragma once

#include <memory>

#include <Korvo/Common/Serialization/Buffer.h>
#include <Korvo/Common/Serialization/InvalidConversionException.h>

namespace Korvo::Common::Serialization {

/// Turns a domain object `D` into bytes: converts it with a converter `C` into a default-made
/// wire record (`Impl::Record`) and encodes that with `Impl` (a `SerializerImpl<G>`).
template <class Impl, class D, class C>
class Serializer {
public:
    /// The encoded bytes. Throws `InvalidConversionException` with the converter's message when
    /// the conversion fails (no buffer is made), and whatever `Impl::Serialize` throws.
    std::unique_ptr<Buffer> Serialize(const D& source) const {
        const C converter;
        typename Impl::Record record;
        const auto result = converter.To(source, record);
        if (!result.success) {
            throw InvalidConversionException(result.message);
        }
        return Impl().Serialize(record);
    }
};

}  // namespace Korvo::Common::Serialization

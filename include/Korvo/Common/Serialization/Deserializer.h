#pragma once

#include <utility>

#include <Korvo/Common/Serialization/Buffer.h>
#include <Korvo/Common/Serialization/InvalidConversionException.h>

namespace Korvo::Common::Serialization {

/// Turns bytes into a domain object `D`: decodes them with `Impl` (a `DeserializerImpl<G>`) into a
/// wire record and converts that with `C`. The converter is made once, on first use, and shared
/// by every thread afterwards, so it must keep no per-call state.
template <class Impl, class D, class C>
class Deserializer {
public:
    /// Fills `target` from `buffer`. Throws `InvalidFormatException` for undecodable bytes and
    /// `InvalidConversionException` with the converter's message when the conversion fails.
    void Deserialize(const Buffer& buffer, D& target) const {
        typename Impl::Record record;
        Impl().Deserialize(buffer, record);
        static const C converter;
        const auto result = converter.To(std::move(record), target);
        if (!result.success) {
            throw InvalidConversionException(result.message);
        }
    }
};

}  // namespace Korvo::Common::Serialization

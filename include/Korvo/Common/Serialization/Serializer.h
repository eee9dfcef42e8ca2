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
    ///
    /// The wire record is kept by each thread from one call to the next, so that its texts and
    /// lists keep their room: encoding a value shaped like the last allocates nothing for the
    /// record. After a payload over `kKeptPayloadBytes` the record is let go instead.
    std::unique_ptr<Buffer> Serialize(const D& source) const {
        const C converter;
        thread_local typename Impl::Record record;
        const auto result = converter.To(source, record);
        if (!result.success) {
            throw InvalidConversionException(result.message);
        }
        auto bytes = Impl().Serialize(record);
        if (bytes->Size() > kKeptPayloadBytes) {
            record = typename Impl::Record();
        }
        return bytes;
    }

    static constexpr unsigned int kKeptPayloadBytes = 1024 * 1024;
};

}  // namespace Korvo::Common::Serialization

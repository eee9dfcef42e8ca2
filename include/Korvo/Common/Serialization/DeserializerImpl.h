#pragma once

#include <memory>

#include <thrift/TConfiguration.h>
#include <thrift/Thrift.h>

#include <Korvo/Common/Serialization/Buffer.h>
#include <Korvo/Common/Serialization/DecodeBudget.h>
#include <Korvo/Common/Serialization/InvalidFormatException.h>
#include <Korvo/Common/Serialization/Thrift/BoundedCompactProtocol.h>
#include <Korvo/Common/Serialization/Thrift/PermissiveMemoryBuffer.h>

namespace Korvo::Common::Serialization {

/// The text of every parse failure.
inline constexpr const char* kUnparsableInputMessage =
    "The input could not be parsed by the deserializer";

/// How deeply the records of the protocol nest structs at most (a reply, the clips it carries,
/// their parts...). Decoding refuses to go deeper: each level costs stack, and no valid reply or
/// notification needs more. The records' tests keep this equal to the deepest record. Skipping
/// an unknown field does not count against it (a skipped value may nest this deep on its own).
inline constexpr int kDeepestRecordNesting = 8;

namespace Detail {
/// Decoder limits for one frame of `size` bytes: a message can never claim more than the frame,
/// nor nest deeper than `kDeepestRecordNesting`.
apache::thrift::TConfiguration FrameLimits(unsigned int size);
std::shared_ptr<apache::thrift::TConfiguration> FrameConfiguration(unsigned int size);

/// A shared pointer to an object that outlives every copy of it, without a count of its own.
template <class T>
std::shared_ptr<T> Unowned(T& object) {
    return std::shared_ptr<T>(std::shared_ptr<T>(), &object);
}
}  // namespace Detail

/// Decodes compact-protocol bytes into one wire record `G`, reading them in place (no copy).
/// Keeps no mutable state; may run on any number of threads at once. The frame's limits,
/// transport and protocol live on the stack of each call: decoding allocates only for the record.
template <class G>
class DeserializerImpl {
public:
    using Record = G;

    /// Decodes within `budget` (the default: see `DecodeBudget`).
    explicit DeserializerImpl(DecodeBudget budget = DecodeBudget()) : budget(budget) {}

    /// Fills `record` from `size` bytes at `bytes` (which may be null when `size` is 0). Throws
    /// `InvalidFormatException` "The input could not be parsed by the deserializer" for any Thrift
    /// failure (truncated input, wrong types, a missing required field, a size the bytes cannot
    /// hold, nesting deeper than any record, a record that would take more memory than the
    /// budget allows); other exceptions such as `std::bad_alloc` pass through. Reads nothing
    /// outside the `size` bytes.
    void Deserialize(const unsigned char* bytes, unsigned int size, G& record) const {
        using apache::thrift::transport::TMemoryBuffer;
        try {
            auto limits = Detail::FrameLimits(size);
            Thrift::PermissiveMemoryBuffer frame(const_cast<unsigned char*>(bytes), size,
                                                 TMemoryBuffer::OBSERVE, Detail::Unowned(limits));
            Thrift::BoundedCompactProtocol protocol(Detail::Unowned(frame), budget.For(size));
            record.read(&protocol);
        } catch (const apache::thrift::TException&) {
            throw InvalidFormatException(kUnparsableInputMessage);
        }
    }

    /// The same over a buffer's `Pointer()` and `Size()`; the bytes stay the caller's.
    void Deserialize(const Buffer& buffer, G& record) const {
        Deserialize(buffer.Pointer(), buffer.Size(), record);
    }

private:
    DecodeBudget budget;
};

}  // namespace Korvo::Common::Serialization

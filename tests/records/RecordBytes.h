#pragma once

// Helpers of the record tests: encode a record to bytes, and read bytes back either through the
// generated `read` (Thrift exceptions pass through) or through the deserializer.

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <vector>

#include <thrift/protocol/TCompactProtocol.h>
#include <thrift/transport/TBufferTransports.h>

#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Common/Serialization/SerializerImpl.h>

namespace Korvo::Testing {

using Bytes = std::vector<std::uint8_t>;

/// The concatenation of byte pieces, so that an encoding can be written as its named parts.
inline Bytes Join(std::initializer_list<Bytes> pieces) {
    Bytes all;
    for (const Bytes& piece : pieces) {
        all.insert(all.end(), piece.begin(), piece.end());
    }
    return all;
}

template <class Record>
Bytes Encode(const Record& record) {
    const auto buffer = Common::Serialization::SerializerImpl<Record>().Serialize(record);
    return Bytes(buffer->Pointer(), buffer->Pointer() + buffer->Size());
}

/// Reads with the record's generated `read` over the compact protocol; throws what it throws.
template <class Record>
Record ReadGenerated(const Bytes& bytes) {
    using apache::thrift::transport::TMemoryBuffer;
    auto transport = std::make_shared<TMemoryBuffer>(const_cast<std::uint8_t*>(bytes.data()),
                                                     static_cast<std::uint32_t>(bytes.size()));
    apache::thrift::protocol::TCompactProtocolT<TMemoryBuffer> protocol(transport);
    Record record;
    record.read(&protocol);
    return record;
}

/// Reads through the deserializer, as replies and notifications are read.
template <class Record>
Record Deserialize(const Bytes& bytes) {
    Record record;
    Common::Serialization::DeserializerImpl<Record>().Deserialize(
        bytes.data(), static_cast<unsigned int>(bytes.size()), record);
    return record;
}

}  // namespace Korvo::Testing

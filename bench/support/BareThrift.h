#pragma once

// The baseline's encoding: generated records written and read directly with Thrift's compact
// protocol over its stock memory buffer, as an application using Thrift alone would.

#include <cstddef>
#include <memory>
#include <string>

#include <thrift/protocol/TCompactProtocol.h>
#include <thrift/transport/TBufferTransports.h>

namespace Korvo::Bench::BareThrift {

using apache::thrift::protocol::TCompactProtocolT;
using apache::thrift::transport::TMemoryBuffer;

/// The compact encoding of `record`, copied out of the buffer into a string.
template <class Record>
std::string Encode(const Record& record) {
    auto buffer = std::make_shared<TMemoryBuffer>();
    TCompactProtocolT<TMemoryBuffer> protocol(buffer);
    record.write(&protocol);
    return buffer->getBufferAsString();
}

/// Reads `record` from `size` bytes at `bytes`, in place. Throws Thrift's exceptions.
template <class Record>
void Decode(const void* bytes, std::size_t size, Record& record) {
    auto buffer =
        std::make_shared<TMemoryBuffer>(static_cast<uint8_t*>(const_cast<void*>(bytes)),
                                        static_cast<uint32_t>(size), TMemoryBuffer::OBSERVE);
    TCompactProtocolT<TMemoryBuffer> protocol(buffer);
    record.read(&protocol);
}

}  // namespace Korvo::Bench::BareThrift

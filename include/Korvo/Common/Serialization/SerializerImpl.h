#pragma once

#include <memory>

#include <thrift/protocol/TCompactProtocol.h>

#include <Korvo/Common/Serialization/Buffer.h>
#include <Korvo/Common/Serialization/PointerBuffer.h>
#include <Korvo/Common/Serialization/Thrift/PermissiveMemoryBuffer.h>

namespace Korvo::Common::Serialization {

/// Encodes one wire record `G` (a generated Thrift struct) with the compact protocol, bare (no
/// message envelope). Stateless; may run on any number of threads at once.
template <class G>
class SerializerImpl {
public:
    using Record = G;

    /// The encoded bytes, owned by the returned buffer (released with `free`). Starts from one
    /// 1024-byte allocation that grows by doubling; the bytes are handed over without a copy.
    /// Throws `std::bad_alloc`, or the Thrift exception a failing `write` raises.
    std::unique_ptr<Buffer> Serialize(const G& record) const {
        auto transport = std::make_shared<Thrift::PermissiveMemoryBuffer>(kInitialCapacity);
        apache::thrift::protocol::TCompactProtocolT<Thrift::PermissiveMemoryBuffer> protocol(
            transport);
        record.write(&protocol);
        unsigned char* bytes = nullptr;
        unsigned int size = 0;
        transport->takeBuffer(&bytes, &size);
        return PointerBuffer::AdoptMalloced(bytes, size);
    }

    static constexpr unsigned int kInitialCapacity = 1024;
};

}  // namespace Korvo::Common::Serialization

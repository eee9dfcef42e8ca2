#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <thrift/protocol/TCompactProtocol.h>

#include <Korvo/Common/Serialization/Thrift/PermissiveMemoryBuffer.h>

namespace Korvo::Common::Serialization::Thrift {

/// The compact protocol reading one received frame held in memory, with every size the bytes
/// claim checked against the bytes actually there before anything is allocated for it.
///
/// The stock reader trusts a container's claimed element type when it estimates the bytes a
/// container needs (a struct or an unknown element counts as zero bytes, so a 7-byte frame may
/// claim 2^31 struct elements, which generated code allocates at once), multiplies that estimate
/// in 32 bits, and allocates a string's claimed length before reading it. Here:
/// - a list, set or map needs at least one byte per element, whatever type the wire claims,
///   counted in 64 bits against the unread bytes of the frame;
/// - all the containers of one frame together claim no more elements than the frame has bytes
///   (every element, however nested, starts with a byte of its own), so the elements allocated
///   while decoding one frame never outnumber its bytes;
/// - a string claims no more than the unread bytes of the frame, checked before its buffer grows
///   (no more than the whole frame when read through the `TProtocol` interface rather than
///   through this class, as generated records read);
/// - the nesting depth is the transport configuration's recursion limit (see `FrameConfiguration`).
/// A rejection is a Thrift `TProtocolException` or `TTransportException`, like any other parse
/// failure. Unknown fields are skipped through the same checks.
///
/// One protocol reads one frame on one thread; make a new one for every frame.
class BoundedCompactProtocol
    : public apache::thrift::protocol::TCompactProtocolT<PermissiveMemoryBuffer> {
public:
    /// Reads the unread bytes of `frame`, which must not change while the protocol is in use.
    explicit BoundedCompactProtocol(std::shared_ptr<PermissiveMemoryBuffer> frame);

    void checkReadBytesAvailable(apache::thrift::protocol::TList& list) override;
    void checkReadBytesAvailable(apache::thrift::protocol::TSet& set) override;
    void checkReadBytesAvailable(apache::thrift::protocol::TMap& map) override;

    /// Reads a string (or binary) after checking its claimed length against the unread bytes.
    uint32_t readString(std::string& str);
    uint32_t readBinary(std::string& str);

    /// Skips a field of an unknown id or type with the same checks as a field that is read.
    uint32_t skip(apache::thrift::protocol::TType type);

private:
    /// Charges `elements` elements of at least `bytesPerElement` bytes each (at least one).
    void Claim(std::uint32_t elements, int bytesPerElement);

    /// Elements that the containers of the frame may still claim.
    std::uint64_t unclaimedElements;
};

}  // namespace Korvo::Common::Serialization::Thrift

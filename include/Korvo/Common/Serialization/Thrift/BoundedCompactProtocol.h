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
/// - sizes and lengths are read in 64 bits: one of 2^32 or more is refused, never cut to 32 bits;
/// - what the decoded record takes in memory (strings, list elements, set and map entries, at
///   their in-memory size) is charged against a budget (`DecodeBudget`) before it is allocated;
/// - the nesting depth of records is the transport configuration's recursion limit (see
///   `FrameConfiguration`); skipping an unknown field does not count against it, so an unknown
///   field is skipped at any depth, and a skipped value may itself nest up to
///   `kDeepestRecordNesting` levels.
/// A rejection is a Thrift `TProtocolException` or `TTransportException`, like any other parse
/// failure. Unknown fields are skipped through the same size checks, without being charged.
///
/// One protocol reads one frame on one thread; make a new one for every frame.
class BoundedCompactProtocol
    : public apache::thrift::protocol::TCompactProtocolT<PermissiveMemoryBuffer> {
public:
    /// Reads the unread bytes of `frame`, which must not change while the protocol is in use;
    /// the decoded record may take `budgetBytes` of memory.
    BoundedCompactProtocol(std::shared_ptr<PermissiveMemoryBuffer> frame,
                           std::uint64_t budgetBytes);

    void checkReadBytesAvailable(apache::thrift::protocol::TList& list) override;
    void checkReadBytesAvailable(apache::thrift::protocol::TSet& set) override;
    void checkReadBytesAvailable(apache::thrift::protocol::TMap& map) override;

    uint32_t readListBegin(apache::thrift::protocol::TType& elemType, uint32_t& size);
    uint32_t readSetBegin(apache::thrift::protocol::TType& elemType, uint32_t& size);
    uint32_t readMapBegin(apache::thrift::protocol::TType& keyType,
                          apache::thrift::protocol::TType& valType, uint32_t& size);

    /// Reads a string (or binary) after checking its claimed length against the unread bytes.
    uint32_t readString(std::string& str);
    uint32_t readBinary(std::string& str);

    /// Skips a field of an unknown id or type with the same checks as a field that is read.
    uint32_t skip(apache::thrift::protocol::TType type);

    /// Charges `bytes` of decoded memory; throws `TProtocolException` `SIZE_LIMIT` when that
    /// exceeds what is left of the budget. Called by the generated readers before allocating.
    void ChargeDecoded(std::uint64_t bytes);

private:
    /// A container size or string length from its varint, refused when negative or over 2^31-1.
    uint32_t ReadSize(std::uint32_t& size);
    uint32_t Skip(apache::thrift::protocol::TType type, int depth);

    /// Charges `elements` elements of at least `bytesPerElement` bytes each (at least one).
    void Claim(std::uint32_t elements, int bytesPerElement);

    /// Elements that the containers of the frame may still claim.
    std::uint64_t unclaimedElements;
    /// Bytes of decoded memory still allowed.
    std::uint64_t budgetLeft;
};

}  // namespace Korvo::Common::Serialization::Thrift

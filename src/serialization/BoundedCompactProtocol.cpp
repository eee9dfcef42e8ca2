#include <Korvo/Common/Serialization/Thrift/BoundedCompactProtocol.h>

#include <algorithm>
#include <climits>

#include <thrift/protocol/TProtocolException.h>
#include <thrift/transport/TTransportException.h>

namespace Korvo::Common::Serialization::Thrift {

namespace {

using apache::thrift::protocol::TProtocolException;
using apache::thrift::transport::TTransportException;

int32_t AsLimit(std::uint32_t bytes) {
    // A limit of 0 means "none" to the base class; a frame with no bytes left allows one byte,
    // which the read that follows then fails to find.
    return static_cast<int32_t>(std::clamp<std::uint32_t>(bytes, 1, INT32_MAX));
}

}  // namespace

BoundedCompactProtocol::BoundedCompactProtocol(std::shared_ptr<PermissiveMemoryBuffer> frame)
    : TCompactProtocolT(frame, AsLimit(frame->available_read()), AsLimit(frame->available_read())),
      unclaimedElements(frame->available_read()) {}

void BoundedCompactProtocol::Claim(std::uint32_t elements, int bytesPerElement) {
    const std::uint64_t needed =
        std::uint64_t{elements} * static_cast<std::uint64_t>(std::max(bytesPerElement, 1));
    if (needed > trans_->available_read()) {
        throw TTransportException(TTransportException::END_OF_FILE,
                                  "a container claims more bytes than the frame has left");
    }
    if (elements > unclaimedElements) {
        throw TProtocolException(TProtocolException::SIZE_LIMIT,
                                 "the containers claim more elements than the frame has bytes");
    }
    unclaimedElements -= elements;
}

void BoundedCompactProtocol::checkReadBytesAvailable(apache::thrift::protocol::TList& list) {
    Claim(list.size_, getMinSerializedSize(list.elemType_));
}

void BoundedCompactProtocol::checkReadBytesAvailable(apache::thrift::protocol::TSet& set) {
    Claim(set.size_, getMinSerializedSize(set.elemType_));
}

void BoundedCompactProtocol::checkReadBytesAvailable(apache::thrift::protocol::TMap& map) {
    Claim(map.size_, getMinSerializedSize(map.keyType_) + getMinSerializedSize(map.valueType_));
}

uint32_t BoundedCompactProtocol::readString(std::string& str) {
    return readBinary(str);
}

uint32_t BoundedCompactProtocol::readBinary(std::string& str) {
    // The base reader grows its buffer to the claimed length before reading; the length can
    // claim no more than what is left (its own varint included, a few bytes of slack).
    string_limit_ = AsLimit(trans_->available_read());
    return TCompactProtocolT::readBinary(str);
}

uint32_t BoundedCompactProtocol::skip(apache::thrift::protocol::TType type) {
    return apache::thrift::protocol::skip(*this, type);
}

}  // namespace Korvo::Common::Serialization::Thrift

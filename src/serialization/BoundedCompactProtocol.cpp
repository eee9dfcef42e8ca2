#include <Korvo/Common/Serialization/Thrift/BoundedCompactProtocol.h>

#include <algorithm>
#include <climits>

#include <thrift/protocol/TProtocolException.h>
#include <thrift/transport/TTransportException.h>

#include <Korvo/Common/Serialization/DeserializerImpl.h>

namespace Korvo::Common::Serialization::Thrift {

namespace {

using apache::thrift::protocol::TProtocolException;
using apache::thrift::protocol::TType;
using apache::thrift::transport::TTransportException;

int32_t AsLimit(std::uint32_t bytes) {
    // A limit of 0 means "none" to the base class; a frame with no bytes left allows one byte,
    // which the read that follows then fails to find.
    return static_cast<int32_t>(std::clamp<std::uint32_t>(bytes, 1, INT32_MAX));
}

}  // namespace

BoundedCompactProtocol::BoundedCompactProtocol(std::shared_ptr<PermissiveMemoryBuffer> frame,
                                               std::uint64_t budgetBytes)
    : TCompactProtocolT(frame, AsLimit(frame->available_read()), AsLimit(frame->available_read())),
      unclaimedElements(frame->available_read()),
      budgetLeft(budgetBytes) {}

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

void BoundedCompactProtocol::ChargeDecoded(std::uint64_t bytes) {
    if (bytes > budgetLeft) {
        throw TProtocolException(TProtocolException::SIZE_LIMIT,
                                 "the decoded record would exceed the frame's memory budget");
    }
    budgetLeft -= bytes;
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

uint32_t BoundedCompactProtocol::ReadSize(std::uint32_t& size) {
    // The stock reader keeps the low 32 bits of the varint, so that 2^32 reads as 0.
    int64_t claimed = 0;
    const uint32_t read = readVarint64(claimed);
    if (claimed < 0) {
        throw TProtocolException(TProtocolException::NEGATIVE_SIZE);
    }
    if (claimed > INT32_MAX) {
        throw TProtocolException(TProtocolException::SIZE_LIMIT);
    }
    size = static_cast<std::uint32_t>(claimed);
    return read;
}

uint32_t BoundedCompactProtocol::readListBegin(TType& elemType, uint32_t& size) {
    // One byte: the size in its high half (15: a varint follows), the element type in its low.
    int8_t sizeAndType = 0;
    uint32_t read = readByte(sizeAndType);
    size = (static_cast<uint8_t>(sizeAndType) >> 4) & 0x0F;
    if (size == 15) {
        read += ReadSize(size);
    }
    elemType = getTType(static_cast<int8_t>(sizeAndType & 0x0F));
    apache::thrift::protocol::TList list(elemType, size);
    checkReadBytesAvailable(list);
    return read;
}

uint32_t BoundedCompactProtocol::readSetBegin(TType& elemType, uint32_t& size) {
    return readListBegin(elemType, size);
}

uint32_t BoundedCompactProtocol::readMapBegin(TType& keyType, TType& valType, uint32_t& size) {
    // The size, then (when not empty) one byte: the key type in its high half, the value's low.
    uint32_t read = ReadSize(size);
    int8_t types = 0;
    if (size != 0) {
        read += readByte(types);
    }
    keyType = getTType(static_cast<int8_t>(static_cast<uint8_t>(types) >> 4));
    valType = getTType(static_cast<int8_t>(types & 0x0F));
    apache::thrift::protocol::TMap map(keyType, valType, size);
    checkReadBytesAvailable(map);
    return read;
}

uint32_t BoundedCompactProtocol::readString(std::string& str) {
    return readBinary(str);
}

uint32_t BoundedCompactProtocol::readBinary(std::string& str) {
    // The length can claim no more than what is left, checked before anything grows; the bytes
    // are copied straight out of the frame.
    uint32_t size = 0;
    const uint32_t read = ReadSize(size);
    if (size > trans_->available_read()) {
        throw TProtocolException(TProtocolException::SIZE_LIMIT);
    }
    ChargeDecoded(size);
    uint32_t available = size;
    const uint8_t* bytes = trans_->borrow(nullptr, &available);
    str.assign(reinterpret_cast<const char*>(bytes), size);
    trans_->consume(size);
    return read + size;
}

uint32_t BoundedCompactProtocol::skip(TType type) {
    return Skip(type, 0);
}

uint32_t BoundedCompactProtocol::Skip(TType type, int depth) {
    using namespace apache::thrift::protocol;
    // Skipping keeps its own depth, apart from the records' recursion limit: an unknown field is
    // skipped however deep the record that holds it, and a skipped value may nest as deeply as
    // any record. Skipped values allocate nothing and are not charged.
    const auto enter = [depth] {
        if (depth >= kDeepestRecordNesting) {
            throw TProtocolException(TProtocolException::DEPTH_LIMIT);
        }
    };
    switch (type) {
        case T_BOOL: {
            bool value = false;
            return readBool(value);
        }
        case T_BYTE: {
            int8_t value = 0;
            return readByte(value);
        }
        case T_I16: {
            int16_t value = 0;
            return readI16(value);
        }
        case T_I32: {
            int32_t value = 0;
            return readI32(value);
        }
        case T_I64: {
            int64_t value = 0;
            return readI64(value);
        }
        case T_DOUBLE: {
            double value = 0;
            return readDouble(value);
        }
        case T_STRING: {
            uint32_t size = 0;
            const uint32_t read = ReadSize(size);
            if (size > trans_->available_read()) {
                throw TProtocolException(TProtocolException::SIZE_LIMIT);
            }
            trans_->consume(size);
            return read + size;
        }
        case T_STRUCT: {
            enter();
            std::string name;
            uint32_t read = readStructBegin(name);
            while (true) {
                TType fieldType = T_STOP;
                int16_t id = 0;
                read += readFieldBegin(name, fieldType, id);
                if (fieldType == T_STOP) {
                    break;
                }
                read += Skip(fieldType, depth + 1);
                read += readFieldEnd();
            }
            return read + readStructEnd();
        }
        case T_MAP: {
            enter();
            TType keyType = T_STOP;
            TType valueType = T_STOP;
            uint32_t size = 0;
            uint32_t read = readMapBegin(keyType, valueType, size);
            for (uint32_t i = 0; i < size; ++i) {
                read += Skip(keyType, depth + 1);
                read += Skip(valueType, depth + 1);
            }
            return read + readMapEnd();
        }
        case T_SET:
        case T_LIST: {
            enter();
            TType elementType = T_STOP;
            uint32_t size = 0;
            uint32_t read = readListBegin(elementType, size);
            for (uint32_t i = 0; i < size; ++i) {
                read += Skip(elementType, depth + 1);
            }
            return read + readListEnd();
        }
        default:
            throw TProtocolException(TProtocolException::INVALID_DATA);
    }
}

}  // namespace Korvo::Common::Serialization::Thrift

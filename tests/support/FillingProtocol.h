#pragma once

// A protocol that invents a record instead of reading one, so that any generated record can be
// filled with every field set, without a hand-written filler per record.
//
// The record fills itself through its own generated `read` over FillingProtocol: for each field
// id in turn the protocol offers every Thrift type until the record accepts one (a record rejects
// a type by calling `skip`), answers each value read with a fresh non-zero number or text, and
// gives every list, set and map two elements. A struct ends after a run of ids that no type fits.

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <thrift/protocol/TVirtualProtocol.h>
#include <thrift/transport/TBufferTransports.h>

namespace Korvo::Testing {

namespace ThriftProtocol = apache::thrift::protocol;

class FillingProtocol : public ThriftProtocol::TVirtualProtocol<FillingProtocol> {
public:
    FillingProtocol()
        : TVirtualProtocol(std::make_shared<apache::thrift::transport::TMemoryBuffer>()) {}

    uint32_t readStructBegin(std::string&) {
        Take();
        frames.emplace_back();
        deepest = std::max(deepest, static_cast<int>(frames.size()));
        return 0;
    }
    uint32_t readStructEnd() {
        frames.pop_back();
        return 0;
    }
    uint32_t readFieldBegin(std::string&, ThriftProtocol::TType& type, int16_t& id) {
        Frame& frame = frames.back();
        if (frame.taken || ++frame.typeIndex == kTypes.size()) {  // on to the next id
            frame.unusedRun = frame.taken ? 0 : frame.unusedRun + 1;
            ++frame.id;
            frame.typeIndex = 0;
        }
        frame.taken = false;
        type = frame.unusedRun < kUnusedIdsBeforeStop ? kTypes[frame.typeIndex]
                                                      : ThriftProtocol::T_STOP;
        id = frame.id;
        return 0;
    }
    uint32_t readFieldEnd() { return 0; }
    // The record refused the offered type.
    uint32_t skip(ThriftProtocol::TType) { return 0; }

    uint32_t readListBegin(ThriftProtocol::TType& type, uint32_t& size) {
        return Container(type, size);
    }
    uint32_t readSetBegin(ThriftProtocol::TType& type, uint32_t& size) {
        return Container(type, size);
    }
    uint32_t readMapBegin(ThriftProtocol::TType& key, ThriftProtocol::TType&, uint32_t& size) {
        return Container(key, size);
    }
    uint32_t readListEnd() { return 0; }
    uint32_t readSetEnd() { return 0; }
    uint32_t readMapEnd() { return 0; }

    using TVirtualProtocol::readBool;
    uint32_t readBool(bool& value) { return Value(value, true); }
    uint32_t readI16(int16_t& value) { return Value(value, Next() % 30000 + 1); }
    uint32_t readI32(int32_t& value) { return Value(value, Next()); }
    uint32_t readI64(int64_t& value) { return Value(value, (int64_t{1} << 40) + Next()); }
    uint32_t readString(std::string& value) {
        return Value(value, "text " + std::to_string(Next()));
    }
    uint32_t readBinary(std::string& value) { return readString(value); }

    /// The most structs that were open at once.
    int deepest = 0;

private:
    static constexpr std::array<ThriftProtocol::TType, 11> kTypes = {
        ThriftProtocol::T_BOOL,   ThriftProtocol::T_BYTE,   ThriftProtocol::T_I16,
        ThriftProtocol::T_I32,    ThriftProtocol::T_I64,    ThriftProtocol::T_DOUBLE,
        ThriftProtocol::T_STRING, ThriftProtocol::T_STRUCT, ThriftProtocol::T_MAP,
        ThriftProtocol::T_SET,    ThriftProtocol::T_LIST};
    // Records leave at most two ids unused in a row (ids 1 and 2 of the load-boundaries
    // parameter), so three unused ids end a struct.
    static constexpr int kUnusedIdsBeforeStop = 3;

    struct Frame {
        int16_t id = 0;
        size_t typeIndex = 0;
        int unusedRun = 0;
        bool taken = true;  // the record read a value for the id offered last
    };

    void Take() {
        if (!frames.empty()) {
            frames.back().taken = true;
        }
    }
    template <class T, class V>
    uint32_t Value(T& target, V value) {
        Take();
        target = static_cast<T>(value);
        return 0;
    }
    uint32_t Container(ThriftProtocol::TType& type, uint32_t& size) {
        type = ThriftProtocol::T_STRUCT;  // generated readers go by the declared element
                                          // types
        return Value(size, 2);
    }
    int32_t Next() { return ++counter; }

    std::vector<Frame> frames;
    int32_t counter = 0;
};

/// A record with every field set, as FillingProtocol invents it.
template <class Record>
Record Filled() {
    FillingProtocol filler;
    Record record;
    record.read(&filler);
    return record;
}

}  // namespace Korvo::Testing

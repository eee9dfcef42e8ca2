// Every record, with every field set to a value other than its default, survives writing and
// reading unchanged.
//
// The records are filled by their own generated `read` over FillingProtocol, which invents the
// fields: for each field id in turn it offers every Thrift type until the record accepts one (a
// record rejects a type by calling `skip`), answers each value read with a fresh non-zero number
// or text, and gives every list, set and map two elements. A struct ends after a run of ids that
// no type fits. So no record needs a hand-written filler, and the build lists the records of
// idl/: a record or field added to a .thrift file is covered without touching this test.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <vector>

#include <thrift/TToString.h>
#include <thrift/protocol/TVirtualProtocol.h>
#include <thrift/transport/TBufferTransports.h>

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/AnglesGroups.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Channels.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Clips.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Commands.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Common.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/DataCommands.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Notifications.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Replies.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Sequences.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Servers.h>

#include "RecordBytes.h"

namespace {

namespace protocol = apache::thrift::protocol;
using protocol::TType;

class FillingProtocol : public protocol::TVirtualProtocol<FillingProtocol> {
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
    uint32_t readFieldBegin(std::string&, TType& type, int16_t& id) {
        Frame& frame = frames.back();
        if (frame.taken || ++frame.typeIndex == kTypes.size()) {  // on to the next id
            frame.unusedRun = frame.taken ? 0 : frame.unusedRun + 1;
            ++frame.id;
            frame.typeIndex = 0;
        }
        frame.taken = false;
        type = frame.unusedRun < kUnusedIdsBeforeStop ? kTypes[frame.typeIndex] : protocol::T_STOP;
        id = frame.id;
        return 0;
    }
    uint32_t readFieldEnd() { return 0; }
    uint32_t skip(TType) { return 0; }  // the record refused the offered type

    uint32_t readListBegin(TType& type, uint32_t& size) { return Container(type, size); }
    uint32_t readSetBegin(TType& type, uint32_t& size) { return Container(type, size); }
    uint32_t readMapBegin(TType& key, TType&, uint32_t& size) { return Container(key, size); }
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
    static constexpr std::array<TType, 11> kTypes = {
        protocol::T_BOOL, protocol::T_BYTE,   protocol::T_I16,    protocol::T_I32,
        protocol::T_I64,  protocol::T_DOUBLE, protocol::T_STRING, protocol::T_STRUCT,
        protocol::T_MAP,  protocol::T_SET,    protocol::T_LIST};
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
    uint32_t Container(TType& type, uint32_t& size) {
        type = protocol::T_STRUCT;  // generated readers go by the declared element types
        return Value(size, 2);
    }
    int32_t Next() { return ++counter; }

    std::vector<Frame> frames;
    int32_t counter = 0;
};

template <class Record>
class RecordRoundTrip : public ::testing::Test {};

// Test names carry the record's name, the text its printout starts with.
struct RecordName {
    template <class Record>
    static std::string GetName(int) {
        const std::string printed = apache::thrift::to_string(Record());
        return printed.substr(0, printed.find('('));
    }
};

// Every struct of idl/, listed by the build.
using AllRecords = ::testing::Types<
#include "AllRecords.inc"
    >;
TYPED_TEST_SUITE(RecordRoundTrip, AllRecords, RecordName);

TYPED_TEST(RecordRoundTrip, EveryFieldSetSurvivesWritingAndReading) {
    FillingProtocol filler;
    TypeParam filled;
    filled.read(&filler);
    ASSERT_NE(filled, TypeParam());  // the filler reached the record

    const auto bytes = Korvo::Testing::Encode(filled);
    const auto decoded = Korvo::Testing::Deserialize<TypeParam>(bytes);
    EXPECT_EQ(decoded, filled);
    EXPECT_EQ(Korvo::Testing::Encode(decoded), bytes);
}

// Filled, every record nests as deeply as it can; the decoder's depth limit is the deepest.
template <class Record>
int FilledNesting() {
    FillingProtocol filler;
    Record filled;
    filled.read(&filler);
    return filler.deepest;
}

template <class... Records>
int DeepestNesting(::testing::Types<Records...>*) {
    return std::max({FilledNesting<Records>()...});
}

TEST(RecordNesting, TheDecoderRefusesOnlyWhatIsDeeperThanTheDeepestRecord) {
    EXPECT_EQ(DeepestNesting(static_cast<AllRecords*>(nullptr)),
              Korvo::Common::Serialization::kDeepestRecordNesting);
}

}  // namespace

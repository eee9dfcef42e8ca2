// Every record, with every field set to a value other than its default, survives writing and
// reading unchanged.
//
// The records are filled by FillingProtocol (support/FillingProtocol.h), so no record needs a
// hand-written filler, and the build lists the records of idl/: a record or field added to a
// .thrift file is covered without touching this test.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include <thrift/TToString.h>

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
#include "support/FillingProtocol.h"

namespace {

using Korvo::Testing::FillingProtocol;

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
    const auto filled = Korvo::Testing::Filled<TypeParam>();
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

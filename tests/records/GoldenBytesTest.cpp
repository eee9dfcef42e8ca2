// Encodings written out by hand from the compact protocol's rules: a field header is one byte,
// (id delta << 4) | type, with the types 2 false, 5 i32, 6 i64, 8 binary, 9 list, 10 set, 11 map
// and 12 struct; integers are zigzag varints; a list or set header of fewer than 15 elements is
// (size << 4) | element type; an empty map is the single byte 0; a struct ends with the stop byte
// 0, and field ids restart from 0 inside it.

#include <gtest/gtest.h>

#include <string>

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Clips.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Commands.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/DataCommands.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Sequences.h>

#include "RecordBytes.h"

namespace {

using namespace Korvo::Plexis::Tessel::Serialization::Thrift;
using namespace Korvo::Testing;
using Korvo::Plexis::Data::Generated::Guid;
using Korvo::Plexis::Data::Generated::PlayerDataOverrides;

// clang-format off
const Bytes kEmptyGuid = {0x18, 0x00, 0x00};                        // value "", stop
const Bytes kDefaultText = {0x18, 0x00, 0x12, 0x00};                // data "", isUtf16 false
const Bytes kDefaultLoadBoundary = {0x15, 0x00, 0x1C, 0x00, 0x00};  // type 0, empty member

// A default Clip without its stop byte.
const Bytes kDefaultClipFields = Join({
    {0x18, 0x00, 0x18, 0x00, 0x18, 0x00, 0x18, 0x00},  // 1-4 empty strings
    {0x1C}, kDefaultText, {0x1C}, kDefaultText,         // 5 name, 6 varId
    {0x19, 0x0C, 0x19, 0x04},                           // 7 empty list of struct, 8 of i16
    {0x12, 0x12, 0x12, 0x12},                           // 9-12 false, the value in the header
    {0x15, 0x00},                                       // 13
    {0x55, 0x00},                                       // 18: delta 5 over the optionals 14-17
    {0x25, 0x00, 0x15, 0x00},                           // 20: delta 2 over 19; 21
    {0x35, 0x00, 0x15, 0x00, 0x15, 0x00},               // 24: delta 3 over 22-23; 25, 26
    {0x46, 0x00},                                       // 30 (i64): delta 4 over 27-29
    {0x16, 0x00, 0x16, 0x00, 0x16, 0x00, 0x16, 0x00},   // 31-34 i64
    {0x15, 0x00},                                       // 35 i32
    {0x16, 0x00, 0x16, 0x00, 0x16, 0x00, 0x16, 0x00},   // 36-39 i64
    {0x15, 0x00, 0x15, 0x00},                           // 40, 41 i32
});
// clang-format on

Guid MakeGuid(const std::string& value) {
    Guid guid;
    guid.value = value;
    return guid;
}

TEST(RecordEncoding, DefaultClipWritesExactlyItsAlwaysFields) {
    EXPECT_EQ(Encode(Data::Clips::Generated::Clip()), Join({kDefaultClipFields, {0x00}}));

    Data::Clips::Generated::Clip lowRes;
    lowRes.__set_lowResEssence({});
    Bytes essence(26, 0x00);  // 13 i32 fields at 0
    for (size_t i = 0; i < essence.size(); i += 2) {
        essence[i] = 0x15;
    }
    // Field 49 right after 41: delta 8.
    EXPECT_EQ(Encode(lowRes), Join({kDefaultClipFields, {0x8C}, essence, {0x00, 0x00}}));
}

TEST(RecordEncoding, OptionalFieldsAppearOnlyWhenSet) {
    PlayerDataOverrides guidOnly;
    guidOnly.playerGuid = MakeGuid("p");
    EXPECT_EQ(Encode(guidOnly), Bytes({0x1C, 0x18, 0x01, 'p', 0x00, 0x00}));
    EXPECT_EQ(Encode(Commands::Generated::GetPlaylistsCommandParams()),
              Join({{0x1C}, kEmptyGuid, {0x15, 0x00, 0x00}}));
    EXPECT_EQ(Encode(Commands::Generated::UpdateAnglesGroupCommandParams()),
              Join({{0x1C}, kEmptyGuid, {0x1C}, kEmptyGuid, {0x00}}));
    EXPECT_EQ(Encode(Data::Channels::Generated::SpecializedLoadBoundary()), Bytes({0x00}));
}

TEST(RecordEncoding, RetiredFieldIdsStayGapsAndWidthsStayAsDeclared) {
    EXPECT_EQ(Encode(Commands::Generated::SetLoadBoundariesCommandParam()),
              Join({{0x3C}, kDefaultLoadBoundary, {0x1C}, kDefaultLoadBoundary, {0x00}}));
    // clang-format off
    EXPECT_EQ(Encode(Data::Sequences::Generated::Sequence()), Join({
        {0x1C, 0x15, 0x00, 0x15, 0x00, 0x00},        // 1 id
        {0x18, 0x00},                                // 2
        {0x1C}, kDefaultText, {0x1C}, kDefaultText,  // 3, 4
        {0x12, 0x18, 0x00, 0x15, 0x00},              // 5 bool, 6 string, 7 i32
        {0x25, 0x00, 0x15, 0x00, 0x15, 0x00},        // 9 (delta 2), 10, 11 i32
        {0x16, 0x00, 0x16, 0x00},                    // 12, 13 i64
        {0x16, 0x00, 0x16, 0x00},                    // 14, 15 play rate, i64
        {0x12, 0x15, 0x00, 0x00},                    // 16 bool, 17 i32, stop
    }));
    // clang-format on
    Data::Sequences::Generated::Speed speed;
    speed.numerator = 1;
    speed.denominator = -2;
    EXPECT_EQ(Encode(speed), Bytes({0x15, 0x02, 0x15, 0x03, 0x00}));  // i32, zigzag
}

TEST(RecordEncoding, EmptyContainersKeepTheirHeaders) {
    EXPECT_EQ(Encode(Commands::Generated::PlayCommandParams()),
              Join({{0x1C}, kEmptyGuid, {0x1A, 0x0C, 0x15, 0x00, 0x15, 0x00, 0x00}}));
    EXPECT_EQ(Encode(Commands::Generated::DeleteClipsCommandParams()),
              Join({{0x1C}, kEmptyGuid, {0x19, 0x0C, 0x00}}));
    EXPECT_EQ(Encode(Commands::Generated::LiveCommandParams()),
              Join({{0x1C}, kEmptyGuid, {0x1B, 0x00, 0x00}}));
}

TEST(RecordEncoding, GuidSetsAndMapsAreOrderedByValueTextWithoutDuplicates) {
    Commands::Generated::PlayCommandParams play;
    for (const char* value : {"b", "ab", "aa", "b"}) {
        play.players.insert(MakeGuid(value));
    }
    Commands::Generated::LiveCommandParams live;
    live.players[MakeGuid("b")] = MakeGuid("x");
    live.players[MakeGuid("a")] = MakeGuid("y");

    // Set of 3 structs: "aa", "ab", "b".
    EXPECT_EQ(Encode(play), Join({{0x1C},
                                  kEmptyGuid,
                                  {0x1A, 0x3C, 0x18, 0x02, 'a', 'a', 0x00},
                                  {0x18, 0x02, 'a', 'b', 0x00, 0x18, 0x01, 'b', 0x00},
                                  {0x15, 0x00, 0x15, 0x00, 0x00}}));
    // Map of 2 struct -> struct entries: a -> y, b -> x.
    EXPECT_EQ(Encode(live), Join({{0x1C},
                                  kEmptyGuid,
                                  {0x1B, 0x02, 0xCC},
                                  {0x18, 0x01, 'a', 0x00, 0x18, 0x01, 'y', 0x00},
                                  {0x18, 0x01, 'b', 0x00, 0x18, 0x01, 'x', 0x00},
                                  {0x00}}));
}

}  // namespace

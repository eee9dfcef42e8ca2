// Encodings written out by hand from the compact protocol's rules. A field header is one byte,
// (id delta << 4) | type, with the types 1 true, 2 false, 4 i16, 5 i32, 6 i64, 8 binary, 9 list,
// 10 set, 11 map and 12 struct; integers are zigzag varints; a list or set header of fewer than 15
// elements is (size << 4) | element type; an empty map is the single byte 0; a struct ends with
// the stop byte 0, and field ids restart from 0 inside it.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Clips.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Commands.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Common.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/DataCommands.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Sequences.h>

#include "RecordBytes.h"

namespace {

using namespace Korvo::Plexis::Tessel::Serialization::Thrift;
using Korvo::Plexis::Data::Generated::Guid;
using Korvo::Plexis::Data::Generated::PlayerDataOverrides;
using Korvo::Testing::Bytes;
using Korvo::Testing::Encode;
using Korvo::Testing::Join;

// Struct bodies (what follows a struct field header), each ending with its stop byte.
// clang-format off
const Bytes kEmptyGuid = {0x18, 0x00, 0x00};
Bytes GuidBody(char value) {
    return {0x18, 0x01, static_cast<std::uint8_t>(value), 0x00};
}
const Bytes kDefaultText = {0x18, 0x00, 0x12, 0x00};                // data "", isUtf16 false
const Bytes kDefaultLoadBoundary = {0x15, 0x00, 0x1C, 0x00, 0x00};  // type 0, empty member
const Bytes kDefaultEssence = {0x15, 0x00, 0x15, 0x00, 0x15, 0x00, 0x15, 0x00, 0x15, 0x00,
                               0x15, 0x00, 0x15, 0x00, 0x15, 0x00, 0x15, 0x00, 0x15, 0x00,
                               0x15, 0x00, 0x15, 0x00, 0x15, 0x00, 0x00};  // 13 i32 zeros

// A default Clip, split around its userBits list (field 8) and without its stop byte.
const Bytes kClipUpToKeywords = Join({
    {0x18, 0x00, 0x18, 0x00, 0x18, 0x00, 0x18, 0x00},  // 1-4 empty strings
    {0x1C}, kDefaultText, {0x1C}, kDefaultText,         // 5 name, 6 varId
    {0x19, 0x0C},                                       // 7 keywords: empty list of struct
});
const Bytes kEmptyUserBits = {0x19, 0x04};              // 8 userBits: empty list of i16
const Bytes kClipFromIs3D = {
    0x12, 0x12, 0x12, 0x12,                          // 9-12 false booleans, value in the header
    0x15, 0x00,                                      // 13 trainStatus
    0x55, 0x00,                                      // 18: delta 5 over the unset optionals 14-17
    0x25, 0x00,                                      // 20: delta 2 over 19
    0x15, 0x00,                                      // 21
    0x35, 0x00,                                      // 24: delta 3 over 22-23
    0x15, 0x00, 0x15, 0x00,                          // 25, 26
    0x46, 0x00,                                      // 30 (i64): delta 4 over 27-29
    0x16, 0x00, 0x16, 0x00, 0x16, 0x00, 0x16, 0x00,  // 31-34 i64
    0x15, 0x00,                                      // 35 i32
    0x16, 0x00, 0x16, 0x00, 0x16, 0x00, 0x16, 0x00,  // 36-39 i64
    0x15, 0x00, 0x15, 0x00,                          // 40, 41 i32
};
// clang-format on

struct Golden {
    const char* what;
    Bytes actual;
    Bytes expected;
};

void ExpectGolden(const std::vector<Golden>& rows) {
    for (const Golden& row : rows) {
        EXPECT_EQ(row.actual, row.expected) << row.what;
    }
}

Guid MakeGuid(const std::string& value) {
    Guid guid;
    guid.value = value;
    return guid;
}

TEST(RecordEncoding, DefaultClipWritesExactlyItsAlwaysFields) {
    Data::Clips::Generated::Clip clip;
    const Bytes defaultClip = Join({kClipUpToKeywords, kEmptyUserBits, kClipFromIs3D, {0x00}});

    Data::Clips::Generated::Clip lowRes;
    lowRes.__set_lowResEssence({});

    Data::Clips::Generated::Clip userBits;
    userBits.userBits = {1, -1, 300};

    ExpectGolden({
        {"default clip", Encode(clip), defaultClip},
        {"only lowResEssence set: field 49 right after 41, delta 8", Encode(lowRes),
         Join({kClipUpToKeywords, kEmptyUserBits, kClipFromIs3D, {0x8C}, kDefaultEssence, {0x00}})},
        {"userBits as zigzag varints 2, 1, 600", Encode(userBits),
         Join({kClipUpToKeywords, {0x19, 0x34, 0x02, 0x01, 0xD8, 0x04}, kClipFromIs3D, {0x00}})},
    });
}

TEST(RecordEncoding, OptionalFieldsAppearOnlyWhenSet) {
    PlayerDataOverrides guidOnly;
    guidOnly.playerGuid = MakeGuid("p");
    PlayerDataOverrides withMessage = guidOnly;
    withMessage.__set_message("m");

    Commands::Generated::GetPlaylistsCommandParams unfiltered;
    Commands::Generated::GetPlaylistsCommandParams filtered;
    filtered.__set_idFilter(MakeGuid("f"));

    Commands::Generated::UpdateAnglesGroupCommandParams noAngles;
    Commands::Generated::UpdateAnglesGroupCommandParams secondaryOnly;
    secondaryOnly.__set_secondaryAngle(MakeGuid("s"));

    ExpectGolden({
        {"overrides with only the player", Encode(guidOnly), Join({{0x1C}, GuidBody('p'), {0x00}})},
        {"overrides with a message: field 8, delta 7", Encode(withMessage),
         Join({{0x1C}, GuidBody('p'), {0x78, 0x01, 'm', 0x00}})},
        {"playlists without a filter", Encode(unfiltered),
         Join({{0x1C}, kEmptyGuid, {0x15, 0x00, 0x00}})},
        {"playlists with a filter", Encode(filtered),
         Join({{0x1C}, kEmptyGuid, {0x15, 0x00, 0x1C}, GuidBody('f'), {0x00}})},
        {"angles group without angles", Encode(noAngles),
         Join({{0x1C}, kEmptyGuid, {0x1C}, kEmptyGuid, {0x00}})},
        {"angles group with the secondary angle: delta 2", Encode(secondaryOnly),
         Join({{0x1C}, kEmptyGuid, {0x1C}, kEmptyGuid, {0x2C}, GuidBody('s'), {0x00}})},
        {"load boundary with neither member",
         Encode(Data::Channels::Generated::SpecializedLoadBoundary()),
         {0x00}},
        {"track with neither field", Encode(Data::Sequences::Generated::AudioVideoTrack()), {0x00}},
    });
}

TEST(RecordEncoding, RetiredFieldIdsStayGapsAndWidthsStayAsDeclared) {
    Data::Sequences::Generated::Speed speed;
    speed.numerator = 1;
    speed.denominator = -2;

    ExpectGolden({
        {"boundaries parameter starts at id 3",
         Encode(Commands::Generated::SetLoadBoundariesCommandParam()),
         Join({{0x3C}, kDefaultLoadBoundary, {0x1C}, kDefaultLoadBoundary, {0x00}})},
        // clang-format off
        {"sequence skips id 8, play rate in i64", Encode(Data::Sequences::Generated::Sequence()),
         Join({
             {0x1C, 0x15, 0x00, 0x15, 0x00, 0x00},        // 1 id
             {0x18, 0x00},                                // 2 umId
             {0x1C}, kDefaultText, {0x1C}, kDefaultText,  // 3 varId, 4 name
             {0x12, 0x18, 0x00, 0x15, 0x00},              // 5 bool, 6 string, 7 i32
             {0x25, 0x00},                                // 9: delta 2
             {0x15, 0x00, 0x15, 0x00},                    // 10, 11 i32
             {0x16, 0x00, 0x16, 0x00},                    // 12, 13 durations, i64
             {0x16, 0x00, 0x16, 0x00},                    // 14, 15 play rate, i64
             {0x12, 0x15, 0x00, 0x00},                    // 16 bool, 17 i32, stop
         })},
        // clang-format on
        {"speed in i32", Encode(speed), {0x15, 0x02, 0x15, 0x03, 0x00}},
    });
}

TEST(RecordEncoding, EmptyContainersKeepTheirHeaders) {
    ExpectGolden({
        {"empty set of players", Encode(Commands::Generated::PlayCommandParams()),
         Join({{0x1C}, kEmptyGuid, {0x1A, 0x0C, 0x15, 0x00, 0x15, 0x00, 0x00}})},
        {"empty list of clips", Encode(Commands::Generated::DeleteClipsCommandParams()),
         Join({{0x1C}, kEmptyGuid, {0x19, 0x0C, 0x00}})},
        {"empty map of players", Encode(Commands::Generated::LiveCommandParams()),
         Join({{0x1C}, kEmptyGuid, {0x1B, 0x00, 0x00}})},
        {"tag with empty properties",
         Encode(Data::Sequences::Generated::Tag()),
         {0x15, 0x00, 0x15, 0x00, 0x16, 0x00, 0x1B, 0x00, 0x00}},
        {"empty list of i32",
         Encode(Data::Sequences::Generated::TagProperty()),
         {0x15, 0x00, 0x19, 0x05, 0x00}},
    });
}

TEST(RecordEncoding, GuidSetsAndMapsAreOrderedByValueTextWithoutDuplicates) {
    Commands::Generated::PlayCommandParams play;
    play.commandId = MakeGuid("c");
    for (const char* value : {"b", "ab", "aa", "b"}) {
        play.players.insert(MakeGuid(value));
    }
    Commands::Generated::LiveCommandParams live;
    live.players[MakeGuid("b")] = MakeGuid("x");
    live.players[MakeGuid("a")] = MakeGuid("y");
    live.players[MakeGuid("b")] = MakeGuid("z");

    ExpectGolden({
        {"set: aa, ab, b", Encode(play),
         Join({{0x1C},
               GuidBody('c'),
               {0x1A, 0x3C, 0x18, 0x02, 'a', 'a', 0x00, 0x18, 0x02, 'a', 'b', 0x00},
               GuidBody('b'),
               {0x15, 0x00, 0x15, 0x00, 0x00}})},
        {"map: a then b, b keeps its last value", Encode(live),
         Join({{0x1C},
               kEmptyGuid,
               {0x1B, 0x02, 0xCC},
               GuidBody('a'),
               GuidBody('y'),
               GuidBody('b'),
               GuidBody('z'),
               {0x00}})},
    });
}

TEST(RecordEncoding, NestedRecordsAndTextTravelWhole) {
    Commands::Generated::CreateAnglesGroupCommandParams group;
    group.commandGuid = MakeGuid("c");
    group.groupKivIndex = 3;
    group.creationParams.commandGuid = MakeGuid("n");

    Data::Clips::Generated::AsciiOrUtf16String utf16;
    utf16.data = std::string("A\0B\0", 4);
    utf16.isUtf16 = true;

    ExpectGolden({
        {"group creation nests a whole clip creation", Encode(group),
         Join({{0x1C},
               GuidBody('c'),
               {0x15, 0x06, 0x1C, 0x1C},
               GuidBody('n'),
               {0x19, 0x0C, 0x00, 0x00}})},
        {"UTF-16 text as its bytes, true in the header",
         Encode(utf16),
         {0x18, 0x04, 'A', 0x00, 'B', 0x00, 0x11, 0x00}},
    });
}

}  // namespace

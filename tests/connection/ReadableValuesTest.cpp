// The names of the server's value sets, and names as UTF-8 whatever encoding they came in.

#include <gtest/gtest.h>

#include <Korvo/Plexis/Data/ReadableValues.h>

namespace Korvo::Plexis::Data {
namespace {

TEST(ReadableValuesTest, EveryValueReadsAsItsNameAndAnUnknownOneAsItsNumber) {
    Channels::PlayerState player;
    player.playMode = 4;
    player.loadedMaterialType = 2;
    Servers::ServerInfo server;
    server.status = 0;
    Channels::RecorderState recorder;
    recorder.isRecording = true;
    struct Case {
        std::string read;
        std::string expected;
    };
    const Case cases[] = {
        {ToString(PlayModeOf(player)), "Dialing"},
        {ToString(MaterialTypeOf(player)), "Sequence"},
        {ToString(ServerStatusOf(server)), "Offline"},
        {ToString(ActivityOf(recorder)), "Recording"},
        {ToString(OperationStatus{1, 8}), "ServerOffline"},
        {ToString(OperationStatus{}), "NotFilled"},
        {ToString(OperationStatus{2, 3}), "Other(2, 3)"},
        {ToString(static_cast<PlayMode>(9)), "Unknown(9)"},
    };
    for (const Case& row : cases) {
        EXPECT_EQ(row.read, row.expected);
    }
    EXPECT_EQ(OutcomeStatusOf({1, 10}), OutcomeStatus::InUse);
}

TEST(ReadableValuesTest, NamesReadAsUtf8WhateverTheWireCarried) {
    struct Case {
        std::string bytes;
        bool utf16;
        std::string utf8;
    };
    const Case cases[] = {
        {"Goal", false, "Goal"},
        {"Caf\xc3\xa9", false, "Caf\xc3\xa9"},              // already UTF-8
        {"Caf\xe9", false, "Caf\xc3\xa9"},                  // Latin-1
        {std::string("\0C\0a\0f\0\xe9", 8), true, "Caf\xc3\xa9"},
        {std::string("\xd8\x3d\xde\x00", 4), true, "\xf0\x9f\x98\x80"},  // a surrogate pair
        {std::string("\xd8\x3d\0A", 4), true, "\xef\xbf\xbd" "A"},       // a lone surrogate
        {std::string("\0A\0", 3), true, "A\xef\xbf\xbd"},                // an odd last byte
    };
    for (const Case& row : cases) {
        EXPECT_EQ(ToUtf8(Clips::AsciiOrUtf16String(row.bytes, row.utf16)), row.utf8) << row.utf8;
    }
}

}  // namespace
}  // namespace Korvo::Plexis::Data

#include <gtest/gtest.h>

#include <regex>
#include <stdexcept>
#include <string>
#include <typeinfo>

#include <Korvo/Plexis/Tessel/Json/CommandParamsJson.h>
#include <Korvo/Plexis/Tessel/Json/CommandReplyJson.h>
#include <Korvo/Plexis/Tessel/Json/NotificationJson.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

#include "support/Samples.h"

namespace Korvo::Testing {
namespace {

using namespace Plexis::Tessel::HighLevelOperations::Commands;
using namespace Plexis::Tessel::Json;
using Plexis::Data::Guid;
using ChannelGuid = Plexis::Data::Channels::Guid;
namespace Events = Plexis::Notification;

// Domain -> JSON -> domain must give an equal object of the same class, and writing that object
// again must give the same text (the form is stable).

template <class Params>
void ExpectParamsRoundTrip(const std::string& wireRecord) {
    const auto original = Samples::Filled<Params>(2);
    const std::string name = CommandNameOf(original);
    EXPECT_EQ(name + "Params", wireRecord);
    const std::string text = CommandParamsToJson(original);
    for (const std::string& form : {text, CommandParamsToJson(original, 2)}) {
        const auto back = CommandParamsFromJson(name, form);
        ASSERT_EQ(typeid(*back), typeid(Params)) << name;
        EXPECT_TRUE(static_cast<const Params&>(*back) == original) << name << ": " << form;
        EXPECT_EQ(CommandParamsToJson(*back), text);
    }
}

TEST(CommandParamsJson, EveryCommandSurvivesTheRoundTrip) {
    std::size_t rows = 0;
#define KORVO_TEST_ROW(Domain, Wire, ...) ExpectParamsRoundTrip<Domain>(#Wire), ++rows;
    KORVO_TESSEL_COMMANDS(KORVO_TEST_ROW)
#undef KORVO_TEST_ROW
    EXPECT_EQ(CommandNames().size(), rows);
}

template <class Reply>
void ExpectReplyRoundTrip(const std::string& typeName) {
    const auto original = Samples::Filled<Reply>(3);
    EXPECT_EQ(ReplyTypeNameOf(original), typeName);
    const std::string text = CommandReplyToJson(original);
    EXPECT_EQ(text.rfind("{\"type\":\"" + typeName + "\",", 0), 0u) << text;
    const auto back = CommandReplyFromJson(text);
    ASSERT_EQ(typeid(*back), typeid(Reply)) << typeName;
    EXPECT_EQ(back->GetType(), Reply::kType);
    EXPECT_TRUE(static_cast<const Reply&>(*back) == original) << typeName << ": " << text;
    EXPECT_EQ(CommandReplyToJson(*back), text);
}

TEST(CommandReplyJson, EveryReplySurvivesTheRoundTrip) {
#define KORVO_TEST_ROW(Domain, ...) ExpectReplyRoundTrip<Domain>(#Domain);
    KORVO_TESSEL_REPLIES(KORVO_TEST_ROW)
#undef KORVO_TEST_ROW
}

template <class Args>
void ExpectNotificationRoundTrip(const std::string& typeName) {
    const auto original = Samples::Filled<Args>(4);
    const std::string text = NotificationToJson(original);
    const auto back = NotificationFromJson(text);
    EXPECT_EQ(back.typeName, typeName);
    const Args* args = nullptr;
    if constexpr (std::is_base_of_v<Events::CommandEventArgs, Args>) {
        ASSERT_TRUE(back.commandArgs && !back.statusArgs) << typeName;
        args = dynamic_cast<const Args*>(back.commandArgs.get());
    } else {
        ASSERT_TRUE(back.statusArgs && !back.commandArgs) << typeName;
        args = dynamic_cast<const Args*>(back.statusArgs.get());
    }
    ASSERT_NE(args, nullptr) << typeName;
    EXPECT_EQ(typeid(*args), typeid(Args)) << typeName;
    EXPECT_TRUE(*args == original) << typeName << ": " << text;
    EXPECT_EQ(NotificationToJson(*args), text);
}

TEST(NotificationJson, EveryNotificationSurvivesTheRoundTrip) {
#define KORVO_TEST_ROW(Name, Family, Args, ...) ExpectNotificationRoundTrip<Events::Args>(#Name);
    KORVO_TESSEL_NOTIFICATIONS(KORVO_TEST_ROW)
#undef KORVO_TEST_ROW
    EXPECT_EQ(NotificationTypeNames().size(), 17u);
}

// Golden texts: the documented form, which scripts rely on, cannot drift silently.

TEST(JsonForm, ChannelCommandsAreWrittenAsDocumented) {
    PlayCommandParams play;
    play.commandGuid = Guid("play-1");
    play.players = {ChannelGuid::PlayerOf(1, 3), ChannelGuid::PlayerOf(1, 0)};
    play.speedDen = 2;
    EXPECT_EQ(CommandParamsToJson(play),
              R"({"commandGuid":"play-1","players":["player:1:0","player:1:3"],)"
              R"("speedNum":1,"speedDen":2})");

    LoadClipsCommandParams load;
    load.commandGuid = Guid("load-1");
    load.playersParameters[ChannelGuid::PlayerOf(2, 1)] = {
        Guid("clip-7"), 1500, Plexis::Data::Channels::LoadBoundary::Absolute(1, 900),
        Plexis::Data::Channels::LoadBoundary::Relative(2, -50)};
    EXPECT_EQ(CommandParamsToJson(load),
              R"({"commandGuid":"load-1","playersParameters":{"player:2:1":{"clip":"clip-7",)"
              R"("timepoint":1500,"inBoundary":{"type":1,"absoluteTimepoint":900},)"
              R"("outBoundary":{"type":2,"relativeFieldCount":-50}}}})");

    UpdateAnglesGroupCommandParams group;
    group.commandGuid = Guid("group-1");
    group.groupGuid = Guid("angles-3");
    group.secondaryAngle = Guid("clip-9");
    EXPECT_EQ(CommandParamsToJson(group),
              R"({"commandGuid":"group-1","groupGuid":"angles-3","secondaryAngle":"clip-9"})");
}

TEST(JsonForm, RepliesAndNotificationsAreWrittenAsDocumented) {
    ChannelCommandReply reply(Guid("play-1"));
    reply.Add({ChannelGuid::PlayerOf(1, 0), {}});
    reply.Add({ChannelGuid::RecorderOf(2, 1), {3, 4}});
    EXPECT_EQ(CommandReplyToJson(reply),
              R"({"type":"ChannelCommandReply","commandGuid":"play-1","results":[)"
              R"({"channelGuid":"player:1:0","status":{"code":0,"reason":11}},)"
              R"({"channelGuid":"recorder:2:1","status":{"code":3,"reason":4}}]})");

    Events::RecordingRangesChangedEventArgs ranges;
    ranges.channelGuid = ChannelGuid::RecorderOf(2, 1);
    ranges.ranges = {{100, 250, "10:00:00:00", "10:00:03:00"}};
    ranges.isRecording = true;
    EXPECT_EQ(NotificationToJson(ranges),
              R"({"type":"RecordingRangesChanged","channelGuid":"recorder:2:1","ranges":[)"
              R"({"inTimepoint":100,"outTimepoint":250,"inTimecode":"10:00:00:00",)"
              R"("outTimecode":"10:00:03:00"}],"isRecording":true,"isLoopRecording":false})");
}

TEST(JsonForm, ClipTextsAndTimeCodeAreWrittenAsDocumented) {
    GetClipsCommandReply reply(Guid("clips-1"));
    Plexis::Data::Clips::Clip clip;
    clip.umId = "U1";
    clip.name = Plexis::Data::Clips::AsciiOrUtf16String::Ascii("Goal");
    clip.varId = {std::string("\0C\0a\0f\0\xE9", 8), true};        // "Café" in big-endian UTF-16
    clip.keywords = {{std::string("\xD8\x3D\xDE\x00", 4), true}};  // U+1F600, a surrogate pair
    clip.rating = 5;
    clip.timecode = TimePoints::TimeCode(25, 1, 1234, false, true);
    reply.clips = {clip};
    const std::string text = CommandReplyToJson(reply, 1);
    const std::string clipStart = R"({
 "type": "GetClipsCommandReply",
 "commandGuid": "clips-1",
 "marker": 0,
 "clips": [
  {
   "umId": "U1",
   "sourceUmId": ")" + std::string(64, ' ') +
                                  R"(",)";
    EXPECT_EQ(text.substr(0, clipStart.size()), clipStart);
    EXPECT_NE(text.find(R"("name": "Goal",
   "varId": {
    "utf16": "Café"
   },
   "keywords": [
    {
     "utf16": "😀"
    }
   ],
   "userBits": [],
   "is3D": false,)"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find(R"("rating": 5,)"), std::string::npos);
    EXPECT_EQ(text.find("primaryTimecode"), std::string::npos) << "absent optionals are omitted";
    EXPECT_NE(text.find(R"("timecode": {
    "rateNumerator": 25,
    "rateDenominator": 1,
    "sample": 1234,
    "dropFrame": false,
    "valid": true
   })"),
              std::string::npos);
    const auto back = CommandReplyFromJson(text);
    EXPECT_TRUE(static_cast<const GetClipsCommandReply&>(*back) == reply);
}

TEST(JsonInput, MissingFieldsTakeDefaultsAndACommandIdentifierIsGenerated) {
    const auto first = CommandParamsFromJson("PlayCommand", R"({"players":["player:1:0"]})");
    const auto& play = dynamic_cast<const PlayCommandParams&>(*first);
    EXPECT_EQ(play.players, std::set<ChannelGuid>{ChannelGuid::PlayerOf(1, 0)});
    EXPECT_EQ(play.speedNum, 1);
    EXPECT_EQ(play.speedDen, 1);
    const std::regex uuid("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");
    EXPECT_TRUE(std::regex_match(play.commandGuid.GetValue(), uuid)) << play.commandGuid.GetValue();
    const auto second = CommandParamsFromJson("PlayCommand", R"({"players":["player:1:0"]})");
    EXPECT_NE(second->commandGuid, play.commandGuid);

    // A nested command gets its own identifier; a given one is kept; null clears an optional.
    const auto group = CommandParamsFromJson(
        "CreateAnglesGroupCommand", R"({"commandGuid":"g-1","creationParams":{"clips":[]}})");
    const auto& create = dynamic_cast<const CreateAnglesGroupCommandParams&>(*group);
    EXPECT_EQ(create.commandGuid, Guid("g-1"));
    EXPECT_FALSE(create.creationParams.commandGuid.IsEmpty());
    const auto playlists =
        CommandParamsFromJson("GetPlaylistsCommand", R"({"idFilter":null,"elementMode":2})");
    EXPECT_FALSE(dynamic_cast<const GetPlaylistsCommandParams&>(*playlists).idFilter);

    // A clip typed with a name only keeps the clip's own defaults elsewhere, time code included.
    const auto clips = CommandParamsFromJson(
        "CreateClipsCommand", R"({"clips":[{"sourceId":"train-1","clip":{"name":"Goal"}}]})");
    const auto& made = dynamic_cast<const CreateClipsCommandParams&>(*clips).clips.at(0).clip;
    Plexis::Data::Clips::Clip expected;
    expected.name = Plexis::Data::Clips::AsciiOrUtf16String::Ascii("Goal");
    EXPECT_TRUE(made == expected);
}

struct Failure {
    const char* command;  // nullptr: the text is a reply
    const char* json;
    JsonError::Kind kind;
    const char* message;
};

TEST(JsonInput, EveryFailureNamesItsKindAndThePathOfTheField) {
    using Kind = JsonError::Kind;
    const Failure failures[] = {
        {"PlayCommand", R"({"players":[)", Kind::Syntax, ""},
        {"PlyCommand", "{}", Kind::UnknownName, R"(unknown command "PlyCommand")"},
        {nullptr, R"({"type":"NopeReply"})", Kind::UnknownName,
         R"(type: unknown reply type "NopeReply")"},
        {nullptr, R"({"commandGuid":"c"})", Kind::MissingField, "type: required field is missing"},
        {nullptr, R"({"type":1})", Kind::WrongType, "type: expected a string, found an integer"},
        {"CreateClipsCommand", R"({"clips":[{"sourceId":"s","clip":{"nme":"x"}}]})",
         Kind::UnknownField, "clips[0].clip.nme: unknown field (known: umId, sourceUmId, "},
        {"CreateClipsCommand",
         R"({"clips":[{"sourceId":"s","clip":{}},{"sourceId":"s","clip":{"name":5}}]})",
         Kind::WrongType,
         R"(clips[1].clip.name: expected a string or {"utf16": a string}, found an integer)"},
        {"PlayCommand", R"({"players":["player:1:0"],"speedNum":1.5})", Kind::WrongType,
         "speedNum: expected an integer, found a fractional number"},
        {"PlayCommand", R"({"speedNum":2})", Kind::MissingField,
         "players: required field is missing"},
        {"LoadClipsCommand", R"({"playersParameters":{"player:1:0":{"timepoint":5}}})",
         Kind::MissingField, R"(playersParameters["player:1:0"].clip: required field is missing)"},
        {"PlayCommand", R"({"players":["player:1:0","plyer:1:1"]})", Kind::BadChannel,
         R"(players[1]: "plyer:1:1" is not a channel; expected "player:<server>:<channel>" or )"},
        {"LiveCommand", R"({"players":{"player:x":"feed"}})", Kind::BadChannel,
         R"(players["player:x"]: "player:x" is not a channel)"},
        {"PlayCommand", R"({"players":[],"speedNum":4294967296})", Kind::BadValue,
         "speedNum: 4294967296 is out of range (-2147483648 to 2147483647)"},
    };
    for (const auto& failure : failures) {
        SCOPED_TRACE(failure.json);
        try {
            if (failure.command != nullptr) {
                CommandParamsFromJson(failure.command, failure.json);
            } else {
                CommandReplyFromJson(failure.json);
            }
            ADD_FAILURE() << "accepted";
        } catch (const std::invalid_argument& error) {
            const auto* json = dynamic_cast<const JsonError*>(&error);
            ASSERT_NE(json, nullptr) << error.what();
            EXPECT_EQ(json->GetKind(), failure.kind) << JsonError::KindName(json->GetKind());
            EXPECT_EQ(std::string(error.what()).rfind(failure.message, 0), 0u) << error.what();
            EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos);
        }
    }
}

TEST(JsonInput, AChannelReplyHoldsAtMostTwelveResults) {
    std::string results;
    for (int index = 0; index < 13; ++index) {
        results += std::string(index ? "," : "") + R"({"channelGuid":"player:1:)" +
                   std::to_string(index) + R"("})";
    }
    try {
        CommandReplyFromJson(R"({"type":"ChannelCommandReply","results":[)" + results + "]}");
        ADD_FAILURE() << "thirteen results accepted";
    } catch (const JsonError& error) {
        EXPECT_EQ(error.GetKind(), JsonError::Kind::BadValue);
        EXPECT_STREQ(error.what(), "results: holds at most 12 channel results, found 13");
    }
}

TEST(JsonInput, SyntaxErrorsGiveTheLineAndColumn) {
    try {
        NotificationFromJson("{\n  \"type\": \"ServerAdded\",\n  \"serverId\": 4,\n}");
        ADD_FAILURE() << "accepted";
    } catch (const JsonError& error) {
        EXPECT_EQ(error.GetKind(), JsonError::Kind::Syntax);
        EXPECT_EQ(error.GetPath(), "");
        EXPECT_EQ(std::string(error.what()).rfind("parse error at line 4, column 1", 0), 0u)
            << error.what();
    }
}

}  // namespace
}  // namespace Korvo::Testing

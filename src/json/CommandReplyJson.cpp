#include <Korvo/Plexis/Tessel/Json/CommandReplyJson.h>

#include "json/FamilyTable.h"
#include "json/RequiredFields.h"

namespace Korvo::Plexis::Tessel::Json {
namespace {

using Detail::Row;
using Result = std::unique_ptr<HighLevelOperations::Commands::CommandReply>;

// Named by the reply class (the "type" of the JSON form), in table order.
#define KORVO_JSON_REPLY_ROW(Domain, ...)                                    \
    Row<Result>{#Domain, &typeid(HighLevelOperations::Commands::Domain),     \
                &Detail::WriteObject<HighLevelOperations::Commands::Domain>, \
                &Detail::ReadObject<HighLevelOperations::Commands::Domain, Result>},
const Row<Result> kReplies[] = {KORVO_TESSEL_REPLIES(KORVO_JSON_REPLY_ROW)};
#undef KORVO_JSON_REPLY_ROW

}  // namespace

namespace Detail {

void Codec<Commands::ChannelCommandReply>::Write(const Commands::ChannelCommandReply& value,
                                                 Value& json) {
    json = Value::object();
    WriteMember("commandGuid", value.commandGuid, json);
    WriteMember("results", std::vector<Commands::ChannelResult>(value.begin(), value.end()), json);
}

void Codec<Commands::ChannelCommandReply>::Read(const Value& json,
                                                Commands::ChannelCommandReply& value,
                                                Reader& reader) {
    using Reply = Commands::ChannelCommandReply;
    reader.Expect(json.is_object(), "an object", json);
    CheckKeys(json, {"commandGuid", "results"}, reader);
    ReadMember(json, "commandGuid", value.commandGuid, reader);
    std::vector<Commands::ChannelResult> results(value.begin(), value.end());
    ReadMember(json, "results", results, reader);
    if (results.size() > Reply::kCapacity) {
        Reader::Scope scope(reader, "results");
        reader.Fail(Kind::BadValue, "holds at most " + std::to_string(Reply::kCapacity) +
                                        " channel results, found " +
                                        std::to_string(results.size()));
    }
    const Data::Guid commandGuid = value.commandGuid;
    value = Reply(commandGuid);
    for (const auto& result : results) {
        value.Add(result);
    }
}

}  // namespace Detail

std::string CommandReplyToJson(const HighLevelOperations::Commands::CommandReply& reply,
                               int indent) {
    return Detail::WriteWithRow(Detail::FindByType(kReplies, reply, "reply"), reply, true, indent);
}

std::unique_ptr<HighLevelOperations::Commands::CommandReply> CommandReplyFromJson(
    std::string_view json) {
    return Detail::ReadTyped(kReplies, json, "reply");
}

std::string ReplyTypeNameOf(const HighLevelOperations::Commands::CommandReply& reply) {
    return std::string(Detail::FindByType(kReplies, reply, "reply").name);
}

std::vector<std::string> ReplyTypeNames() {
    return Detail::Names(kReplies);
}

}  // namespace Korvo::Plexis::Tessel::Json

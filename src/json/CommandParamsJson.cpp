#include <Korvo/Plexis/Tessel/Json/CommandParamsJson.h>

#include "json/FamilyTable.h"
#include "json/RequiredFields.h"

namespace Korvo::Plexis::Tessel::Json {
namespace {

using Detail::Row;
using Result = std::unique_ptr<HighLevelOperations::Commands::CommandParams>;

// A command's name is its wire record's name without "Params" ("StartRecordingCommand").
constexpr std::string_view CommandName(std::string_view wireRecord) {
    return wireRecord.substr(0, wireRecord.size() - std::string_view("Params").size());
}

#define KORVO_JSON_COMMAND_ROW(Domain, Wire)                                        \
    Row<Result>{CommandName(#Wire), &typeid(HighLevelOperations::Commands::Domain), \
                &Detail::WriteObject<HighLevelOperations::Commands::Domain>,        \
                &Detail::ReadObject<HighLevelOperations::Commands::Domain, Result>},
const Row<Result> kCommands[] = {KORVO_TESSEL_COMMAND_RECORDS(KORVO_JSON_COMMAND_ROW)};
#undef KORVO_JSON_COMMAND_ROW

}  // namespace

std::unique_ptr<HighLevelOperations::Commands::CommandParams> CommandParamsFromJson(
    std::string_view commandName, std::string_view json) {
    const auto* row = Detail::FindByName(kCommands, commandName);
    if (row == nullptr) {
        throw JsonError(JsonError::Kind::UnknownName, "",
                        "unknown command " + Detail::Value(std::string(commandName)).dump());
    }
    const Detail::Value value = Detail::Parse(json);
    Detail::Reader reader;
    return row->read(value, reader);
}

std::string CommandParamsToJson(const HighLevelOperations::Commands::CommandParams& params,
                                int indent) {
    return Detail::WriteWithRow(Detail::FindByType(kCommands, params, "command parameters"), params,
                                false, indent);
}

std::string CommandNameOf(const HighLevelOperations::Commands::CommandParams& params) {
    return std::string(Detail::FindByType(kCommands, params, "command parameters").name);
}

std::vector<std::string> CommandNames() {
    return Detail::Names(kCommands);
}

}  // namespace Korvo::Plexis::Tessel::Json

#include <Korvo/Plexis/Tessel/Json/CommandParamsJson.h>

#include <Korvo/Plexis/Tessel/Client/CommandTypes.h>

#include "json/FamilyTable.h"
#include "json/RequiredFields.h"

namespace Korvo::Plexis::Tessel::Json {
namespace {

using Detail::Row;
using Result = std::unique_ptr<HighLevelOperations::Commands::CommandParams>;

// Named by the command name ("StartRecordingCommand"), in table order.
#define KORVO_JSON_COMMAND_ROW(Params, ...)                                                  \
    Row<Result>{Client::CommandTraits<HighLevelOperations::Commands::Params>::kName,         \
                &typeid(HighLevelOperations::Commands::Params),                              \
                &Detail::WriteObject<HighLevelOperations::Commands::Params>,                 \
                &Detail::ReadObject<HighLevelOperations::Commands::Params, Result>},
const Row<Result> kCommands[] = {KORVO_TESSEL_COMMANDS(KORVO_JSON_COMMAND_ROW)};
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

#pragma once

// The JSON form of the 30 command parameter classes (docs/json.md). Object keys are the classes'
// member names; a missing `commandGuid` is generated, other missing fields take the class's
// default unless the documentation marks them required.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/Json/JsonError.h>

namespace Korvo::Plexis::Tessel::Json {

/// The parameters of command `commandName` ("PlayCommand", "StartRecordingCommand", ...) read
/// from `json`, as a new object of the command's own class, ready for `CommandClient::Request`.
/// Throws `JsonError` (kind UnknownName for an unknown command, the other kinds for a text that
/// does not fit the class). Any thread; the caller owns the result.
std::unique_ptr<HighLevelOperations::Commands::CommandParams> CommandParamsFromJson(
    std::string_view commandName, std::string_view json);

/// The JSON text of `params`, chosen by its dynamic class; compact when `indent` is negative,
/// otherwise pretty-printed with that many spaces. Throws `std::invalid_argument` for a class that
/// is not one of the 30 command parameter classes. Any thread.
std::string CommandParamsToJson(const HighLevelOperations::Commands::CommandParams& params,
                                int indent = -1);

/// The name of the command whose parameters `params` are ("PlayCommand" for
/// `PlayCommandParams`). Throws `std::invalid_argument` as `CommandParamsToJson` does.
std::string CommandNameOf(const HighLevelOperations::Commands::CommandParams& params);

/// The names of every command, in the order of the command table.
std::vector<std::string> CommandNames();

}  // namespace Korvo::Plexis::Tessel::Json

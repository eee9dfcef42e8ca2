#pragma once

// The JSON form of every reply class (docs/json.md): an object whose "type" is the reply's type
// name ("GetClipsCommandReply", the same text as on the wire), followed by its members.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>
#include <Korvo/Plexis/Tessel/Json/JsonError.h>

namespace Korvo::Plexis::Tessel::Json {

/// The JSON text of `reply` (as a reply builder returns it), chosen by its dynamic class; compact
/// when `indent` is negative, otherwise pretty-printed. Throws `std::invalid_argument` for a class
/// outside the reply table. Any thread.
std::string CommandReplyToJson(const HighLevelOperations::Commands::CommandReply& reply,
                               int indent = -1);

/// A new reply of the class that the text's "type" names, read from `json`. Throws `JsonError`
/// (UnknownName for an unknown type, MissingField when "type" is absent, ...). Any thread; the
/// caller owns the result.
std::unique_ptr<HighLevelOperations::Commands::CommandReply> CommandReplyFromJson(
    std::string_view json);

/// The type name of `reply` ("FailureReply", ...). Throws `std::invalid_argument` for a class
/// outside the reply table.
std::string ReplyTypeNameOf(const HighLevelOperations::Commands::CommandReply& reply);

/// The type names of every reply, in the order of the reply table.
std::vector<std::string> ReplyTypeNames();

}  // namespace Korvo::Plexis::Tessel::Json

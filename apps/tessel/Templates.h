#pragma once

// What `tessel call` shows about the commands: a filled example of each command's parameters,
// and each command's family and replies. Both are derived from the command table.

#include <ostream>
#include <string>

namespace Korvo::Plexis::Tessel::Cli {

/// The parameters of the command `commandName` as pretty JSON, every field present (each
/// optional one set, each list, set and map with one element) with a value of its type: 0,
/// false, "", "player:1:0" for a channel ("recorder:1:4" for the recorders of a recording
/// command). A load boundary, which is either absolute or relative, shows its type only (no
/// boundary). `call` accepts it back as it is. Throws `CliError` (Usage) for an unknown name.
std::string CommandTemplate(const std::string& commandName);

/// One line per command, in table order: its name, its family and the replies it may receive
/// (the one it answers with when it runs first); with `json`, one JSON object per line with the
/// keys "command", "family" and "replies".
void ListCommands(std::ostream& out, bool json);

}  // namespace Korvo::Plexis::Tessel::Cli

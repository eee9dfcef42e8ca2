#pragma once

// The bash completion of `tessel`, generated from the command line's own declaration.

#include <CLI/CLI.hpp>

#include <ostream>

namespace Korvo::Plexis::Tessel::Cli {

/// Writes a bash completion script for `app` (the whole `tessel` command line): its subcommands
/// at every level and their options, the command names after `call`, the notification families
/// and types after `watch`. The build runs it once (`tessel --bash-completion`) and installs the
/// result with the tool.
void WriteBashCompletion(const CLI::App& app, std::ostream& out);

}  // namespace Korvo::Plexis::Tessel::Cli

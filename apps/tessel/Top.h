#pragma once

// tessel top: a live view of every server, player and recorder behind one endpoint pair, drawn
// from a `Mirror`'s snapshots. The drawing (`RenderTop`) is separate from the terminal and the
// mirror so that it can be checked on any snapshot.

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <Korvo/Plexis/Tessel/Client/Mirror.h>

#include "Session.h"

namespace CLI {
class App;
}

namespace Korvo::Plexis::Tessel::Cli {

struct Context;

/// What the view shows of a snapshot.
struct TopFilter {
    /// Only this server's channels; every server when empty.
    std::optional<int> server;
};

/// The lines of one view of `snapshot`: per source its catalogue, per server its sync state,
/// then its players (mode, loaded material by name, time code, speed, remaining time) and its
/// recorders (state, recorded length). Texts from the server are made printable. No escape
/// sequences, no line ends.
std::vector<std::string> RenderTop(const Client::MirrorSnapshot& snapshot, const TopFilter& filter);

/// The server after `current` in the cycle of the `s` key: every server, then each server of
/// `snapshot` in order, then every server again.
std::optional<int> NextServerFilter(const Client::MirrorSnapshot& snapshot,
                                    std::optional<int> current);

/// How `Top` runs.
struct TopOptions {
    bool once = false;  ///< print one snapshot once the mirror is live, and return
};

/// Runs the view against `settings`' endpoints. Full-screen (raw keys, alternate screen,
/// restored on every way out) when `out` is standard output and both it and standard input are
/// terminals; otherwise one block of plain lines per change (at most ten a second), or one with
/// `options.once`. Blocks SIGINT and SIGTERM in the calling thread and the threads it starts;
/// call it before any other thread exists. Returns 0 on `q`, SIGINT or a pipe whose reader has
/// gone, 143 on SIGTERM. Throws `CliError`: Usage for a malformed endpoint or key, NoServer when
/// `once` and the mirror is not live within `settings.timeout`, Local when `out` cannot be
/// written.
int Top(const ConnectionSettings& settings, const TopOptions& options, std::ostream& out,
        std::ostream& err);

/// Adds `tessel top` to `app`.
void AddTopCommand(CLI::App& app, Context& context);

}  // namespace Korvo::Plexis::Tessel::Cli

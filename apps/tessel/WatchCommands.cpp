// tessel watch and tessel demo: the subcommands that run until they are done, outside a session.

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Subcommands.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace {

struct WatchOptions {
    std::vector<std::string> topics;
    std::size_t count = 0;
};

}  // namespace

void AddWatchCommands(CLI::App& app, Context& context) {
    const auto options = std::make_shared<WatchOptions>();
    auto* watch =
        Subcommand(app, "watch",
                   "Print notifications as they arrive, until Ctrl-C (the link must come "
                   "up within --timeout)",
                   {"tessel watch", "tessel watch ChannelStatus",
                    "tessel watch ClipCommand/replay-1 ClipStatus --json",
                    "tessel watch --count 1 ServerStatus"});
    watch->add_option("topics", options->topics,
                      "Topic prefixes: ClipCommand, ClipStatus, ChannelStatus, ServerStatus, "
                      "optionally /<server name>; all when none");
    auto* count = watch->add_option("--count", options->count, "Stop after this many notifications")
                      ->check(WholeInRange(1, kInt64Max));
    On(watch, context, [&context, options, count] {
        std::optional<std::size_t> limit;
        if (count->count() != 0) {
            limit = options->count;
        }
        return Watch(context.settings, options->topics, context.json, limit, context.out,
                     context.err);
    });

    auto* demo = Subcommand(app, "demo",
                            "Start a simulator in this process and show the library at work",
                            {"tessel demo"});
    On(demo, context, [&context] { return Demo(context.out, context.err); });
}

}  // namespace Korvo::Plexis::Tessel::Cli

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
    std::string readyFile;
};

}  // namespace

void AddWatchCommands(CLI::App& app, Context& context) {
    const auto options = std::make_shared<WatchOptions>();
    auto* watch =
        Subcommand(app, "watch",
                   "Print notifications as they arrive, until Ctrl-C, --count or the reader of "
                   "the output going (exit 0); the link must come up within --timeout (else "
                   "exit 5).\n"
                   "Once subscribed, it writes \"tessel: ready: ...\" on standard error (and "
                   "--ready-file). Ready means: the handshake on the notification endpoint has "
                   "completed, so ZeroMQ has sent the subscription ahead of anything else on that "
                   "link, and then the server answered a ping on the command endpoint. ZeroMQ "
                   "does not acknowledge a subscription: a change made after the ready line is "
                   "read is printed by a server that reads its sockets in turn, as tessel-sim "
                   "does. When the ping is not answered within --timeout the line says so and "
                   "only the handshake stands.",
                   {"tessel watch", "tessel watch ChannelStatus",
                    "tessel watch ClipCommand/replay-1 ClipStatus --json",
                    "tessel watch --count 1 PlayerStateChanged --ready-file /tmp/ready",
                    "tessel watch --count 1 ServerStatus"});
    watch->add_option("topics", options->topics,
                      "Families (ClipCommand, ClipStatus, ChannelStatus, ServerStatus) or "
                      "notification types (PlayerStateChanged, ...), optionally /<server name>; "
                      "all when none; another name is refused (exit 2)");
    watch->add_option("--ready-file", options->readyFile,
                      "Write \"ready\" to this file once subscribed (see above)");
    auto* count = watch->add_option("--count", options->count, "Stop after this many notifications")
                      ->check(WholeInRange(1, kInt64Max));
    On(watch, context, [&context, options, count] {
        WatchRequest request;
        ParseWatchTopics(options->topics, request);
        request.json = context.json;
        if (count->count() != 0) {
            request.count = options->count;
        }
        request.readyFile = options->readyFile;
        return Watch(context.settings, request, context.out, context.err);
    });

    auto* demo = Subcommand(app, "demo",
                            "Start a simulator in this process and show the library at work",
                            {"tessel demo"});
    On(demo, context, [&context] { return Demo(context.out, context.err); });
}

}  // namespace Korvo::Plexis::Tessel::Cli

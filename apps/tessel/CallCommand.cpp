// tessel call: any command by name, with its parameters as JSON.

#include <memory>
#include <string>

#include <Korvo/Plexis/Tessel/Json/CommandParamsJson.h>

#include "Errors.h"
#include "Subcommands.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace {

struct CallOptions {
    std::string name;
    std::string parameters;
    bool list = false;
};

}  // namespace

void AddCallCommand(CLI::App& app, Context& context) {
    const auto options = std::make_shared<CallOptions>();
    auto* call = Subcommand(
        app, "call", "Send any command with JSON parameters; print its reply",
        {"tessel call PingCommand", "tessel call GetClipsCommand --json > clips.jsonl",
         "tessel call PlayCommand '{\"players\": [\"player:1:0\"], \"speedNum\": 1, "
         "\"speedDen\": 2}'",
         "tessel call CreateClipsCommand @new-clips.json",
         "echo '{\"players\": [\"player:1:0\"]}' | tessel call GoIdleCommand -",
         "tessel call --list"});
    call->add_option("command", options->name, "Command name, such as PlayCommand (see --list)");
    call->add_option("parameters", options->parameters,
                     "JSON object of the command's parameters; @FILE reads a file, - standard "
                     "input (at most 16 MiB); {} when absent (a missing commandGuid is "
                     "generated)");
    call->add_flag("--list", options->list, "List the command names");
    On(call, context, [&context, options] {
        if (options->list) {
            for (const auto& name : Json::CommandNames()) {
                context.out << name << '\n';
            }
            return 0;
        }
        if (options->name.empty()) {
            throw CliError(ExitCode::Usage,
                           "call: a command name is required (see tessel call --list)");
        }
        const auto params = Json::CommandParamsFromJson(
            options->name, ParametersText(options->parameters, context.in));
        return context.Send(options->name, *params);
    });
}

}  // namespace Korvo::Plexis::Tessel::Cli

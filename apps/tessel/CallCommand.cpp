// tessel call: any command by name, with its parameters as JSON.

#include <memory>
#include <string>

#include <Korvo/Plexis/Tessel/Json/CommandParamsJson.h>

#include "Errors.h"
#include "Subcommands.h"
#include "Templates.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace {

struct CallOptions {
    std::string name;
    std::string parameters;
    bool list = false;
    bool makeTemplate = false;
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
         "tessel call --list", "tessel call LoadClipsCommand --template > load.json",
         "tessel call LoadClipsCommand @load.json"});
    call->add_option("command", options->name, "Command name, such as PlayCommand (see --list)");
    call->add_option("parameters", options->parameters,
                     "JSON object of the command's parameters; @FILE reads a file, - standard "
                     "input (at most 16 MiB); {} when absent (a missing commandGuid is "
                     "generated)");
    call->add_flag("--list", options->list,
                   "List the commands: name, family (channel or data) and the replies each may "
                   "receive");
    call->add_flag("--template", options->makeTemplate,
                   "Print the command's parameters as JSON, every field filled with a value of "
                   "its type (a load boundary as none: add absoluteTimepoint or "
                   "relativeFieldCount), for editing and giving back to call");
    On(call, context, [&context, options] {
        if (options->list) {
            ListCommands(context.out, context.json);
            return 0;
        }
        if (options->makeTemplate) {
            if (options->name.empty()) {
                throw CliError(ExitCode::Usage,
                               "call --template: a command name is required (see tessel call "
                               "--list)");
            }
            context.out << CommandTemplate(options->name) << '\n';
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

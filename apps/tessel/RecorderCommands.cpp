// tessel record start and stop.

#include <memory>
#include <string>
#include <vector>

#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StartCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StopCommandParams.h>

#include "Subcommands.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Commands = HighLevelOperations::Commands;
using Data::Channels::Guid;

namespace {

struct RecorderOptions {
    std::vector<std::string> recorders;  // start, stop
};

void Recorders(CLI::App* command, std::vector<std::string>& texts) {
    command
        ->add_option("recorders", texts,
                     "Recorders: recorder:<server>:<channel> or <server>:<channel>")
        ->required();
}

}  // namespace

void AddRecorderCommands(CLI::App& app, Context& context) {
    const auto options = std::make_shared<RecorderOptions>();
    auto* record = app.add_subcommand("record", "Start or stop recorders");
    record->require_subcommand(1);
    record->footer(Examples({"tessel record start 1:4", "tessel record stop recorder:1:4"}));
    auto* start = Subcommand(*record, "start", "Start recorders recording",
                             {"tessel record start 1:4", "tessel record start 1:4 1:5"});
    Recorders(start, options->recorders);
    On(start, context, [&context, options] {
        auto params = NewParams<Commands::StartCommandParams>();
        params.recorders = ChannelSet(options->recorders, Guid::Recorder);
        return context.Send("StartRecordingCommand", params);
    });
    auto* stop = Subcommand(*record, "stop", "Stop recorders; each recording becomes a clip",
                            {"tessel record stop 1:4"});
    Recorders(stop, options->recorders);
    On(stop, context, [&context, options] {
        auto params = NewParams<Commands::StopCommandParams>();
        params.recorders = ChannelSet(options->recorders, Guid::Recorder);
        return context.Send("StopRecordingCommand", params);
    });
}

}  // namespace Korvo::Plexis::Tessel::Cli

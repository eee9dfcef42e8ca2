// tessel multiviewer get and set.

#include <memory>
#include <string>

#include <Korvo/Plexis/Multiviewer/PlayerDataOverrides.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetMultiviewerDataCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SetMultiviewerDataCommandParams.h>

#include "Subcommands.h"
#include "Text.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Commands = HighLevelOperations::Commands;
using Data::Channels::Guid;

namespace {

// The options of `multiviewer set`; an item of `overrides` is sent only when given.
struct MultiviewerOptions {
    std::string player;
    Multiviewer::PlayerDataOverrides overrides;
    std::string postRollText;
    std::string firstOutputText;
};

}  // namespace

void AddMultiviewerCommands(CLI::App& app, Context& context) {
    const auto options = std::make_shared<MultiviewerOptions>();
    auto* multiviewer = app.add_subcommand("multiviewer", "Read or set what multiviewers show");
    multiviewer->require_subcommand(1);
    multiviewer->footer(Examples(
        {"tessel multiviewer get", "tessel multiviewer set 1:0 --message \"Replay 1\""}));
    auto* get = Subcommand(*multiviewer, "get", "Show the multiviewer data of every player",
                           {"tessel multiviewer get", "tessel multiviewer get --json"});
    On(get, context, [&context] {
        return context.Send("GetMultiviewerDataCommand",
                            NewParams<Commands::GetMultiviewerDataCommandParams>());
    });
    auto* set = Subcommand(
        *multiviewer, "set", "Set what multiviewers show for a player; unset items are left out",
        {"tessel multiviewer set 1:0 --message \"Replay 1\"",
         "tessel multiviewer set 1:0 --control-mode 1 --post-roll yes --clip-in 4500000"});
    auto& overrides = options->overrides;
    set->add_option("player", options->player, "The player")->required();
    auto* message = set->add_option("--message", overrides.message.emplace(), "Text shown");
    auto* control =
        set->add_option("--control-mode", overrides.controlMode.emplace(), "Control mode");
    auto* program =
        set->add_option("--program-mode", overrides.programMode.emplace(), "Program mode");
    auto* postRoll =
        set->add_option("--post-roll", options->postRollText, "Post-roll enabled: yes or no")
            ->check(CLI::IsMember({"yes", "no"}));
    auto* clipIn = set->add_option("--clip-in", overrides.clipCreationIn.emplace(),
                                   "Clip creation in point (time point)");
    auto* clipOut = set->add_option("--clip-out", overrides.clipCreationOut.emplace(),
                                    "Clip creation out point (time point)");
    auto* first = set->add_option("--first-output", options->firstOutputText,
                                  "First controlled media output: yes or no")
                      ->check(CLI::IsMember({"yes", "no"}));
    On(set, context, [=, &context] {
        auto params = NewParams<Commands::SetMultiviewerDataCommandParams>();
        const Guid player = ParseChannel(options->player, Guid::Player);
        auto data = options->overrides;
        data.playerGuid = player;
        // Keep only what was given on the command line.
        const auto keepGiven = [](const CLI::Option* option, auto& item) {
            if (option->count() == 0) {
                item.reset();
            }
        };
        keepGiven(message, data.message);
        keepGiven(control, data.controlMode);
        keepGiven(program, data.programMode);
        keepGiven(clipIn, data.clipCreationIn);
        keepGiven(clipOut, data.clipCreationOut);
        if (postRoll->count() != 0) {
            data.isPostRollEnabled = options->postRollText == "yes";
        }
        if (first->count() != 0) {
            data.isFirstControlledMediaOutput = options->firstOutputText == "yes";
        }
        params.playersDataOverrides[player] = data;
        return context.Send("SetMultiviewerDataCommand", params);
    });
}

}  // namespace Korvo::Plexis::Tessel::Cli

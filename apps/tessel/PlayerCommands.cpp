// The subcommands that drive players: play, pause, step, load, idle.

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GoIdleCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadSequencesCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PlayCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StepCommandParams.h>

#include "Errors.h"
#include "Lookup.h"
#include "Subcommands.h"
#include "Text.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Commands = HighLevelOperations::Commands;
using Data::Channels::Guid;

namespace {

// "N/D" or "N" as a speed fraction.
std::pair<std::int32_t, std::int32_t> ParseSpeed(const std::string& text) {
    const auto slash = text.find('/');
    try {
        std::size_t used = 0;
        const int numerator = std::stoi(text.substr(0, slash), &used);
        if (used != (slash == std::string::npos ? text.size() : slash)) {
            throw std::invalid_argument(text);
        }
        int denominator = 1;
        if (slash != std::string::npos) {
            denominator = std::stoi(text.substr(slash + 1), &used);
            if (used != text.size() - slash - 1 || denominator <= 0) {
                throw std::invalid_argument(text);
            }
        }
        return {numerator, denominator};
    } catch (const std::logic_error&) {
        throw CliError(ExitCode::Usage, "\"" + text +
                                            "\" is not a speed: write N/D (1/1 normal, 1/2 half, "
                                            "-1/1 backwards) or N");
    }
}

struct PlayerOptions {
    std::vector<std::string> players;  // play, pause, step, idle
    std::string speed = "1/1";         // play
    std::int32_t stepFields = 1;       // step
    std::vector<std::string> loadArguments;  // load: players, then the material
    std::int64_t loadAt = 0;
    bool loadPlaylist = false;
    bool loadClip = false;
    bool loadOnAir = false;
    bool idleBlack = false;  // idle
};

CLI::Option* Players(CLI::App* command, std::vector<std::string>& texts) {
    return command
        ->add_option("players", texts, "Players: player:<server>:<channel> or <server>:<channel>")
        ->required();
}

}  // namespace

void AddPlayerCommands(CLI::App& app, Context& context) {
    const auto options = std::make_shared<PlayerOptions>();
    auto* play = Subcommand(app, "play", "Play players at a speed",
                            {"tessel play 1:0", "tessel play player:1:0 player:1:1 --speed 1/2",
                             "tessel play 1:0 --speed=-1/1"});
    Players(play, options->players);
    play->add_option("--speed", options->speed,
                     "Speed as N/D (1/1 normal, 1/2 half, -1/1 backwards)")
        ->capture_default_str();
    On(play, context, [&context, options] {
        auto params = NewParams<Commands::PlayCommandParams>();
        params.players = ChannelSet(options->players, Guid::Player);
        std::tie(params.speedNum, params.speedDen) = ParseSpeed(options->speed);
        return context.Send("PlayCommand", params);
    });

    auto* pause = Subcommand(app, "pause", "Pause players (play at speed 0)",
                             {"tessel pause 1:0", "tessel pause 1:0 1:1"});
    Players(pause, options->players);
    On(pause, context, [&context, options] {
        auto params = NewParams<Commands::PlayCommandParams>();
        params.players = ChannelSet(options->players, Guid::Player);
        params.speedNum = 0;
        return context.Send("PlayCommand", params);
    });

    auto* step = Subcommand(
        app, "step", "Pause players and step them by fields",
        {"tessel step 1:0", "tessel step 1:0 --fields 10", "tessel step 1:0 --fields=-25"});
    Players(step, options->players);
    step->add_option("--fields", options->stepFields, "Fields to step; negative steps back")
        ->capture_default_str()
        ->check(WholeInRange(kInt32Min, kInt32Max));
    On(step, context, [&context, options] {
        auto params = NewParams<Commands::StepCommandParams>();
        params.players = ChannelSet(options->players, Guid::Player);
        params.fieldCount = options->stepFields;
        return context.Send("StepCommand", params);
    });

    auto* load = Subcommand(
        app, "load",
        "Load a clip or playlist (by name, umId prefix or umId) on players",
        {"tessel load 1:0 \"Clip 00012\"", "tessel load 1:0 1:1 3fa4 --at 4500000",
         "tessel load 2:0 \"Playlist 1\" --on-air", "tessel load 1:0 <umId> --playlist"});
    load->add_option("players", options->loadArguments,
                     "PLAYER... MATERIAL: the players, then the clip or playlist: its name (any "
                     "case), the first digits of its umId, or its umId; a text that matches "
                     "several is refused (exit 2) with the list")
        ->required()
        ->expected(2, -1);
    load->add_option("--at", options->loadAt,
                     "Cue at this time point (a clip; 0: the in point), or this many fields from "
                     "the start (a playlist)")
        ->capture_default_str()
        ->check(WholeInRange(kInt64Min, kInt64Max));
    load->add_flag("--playlist", options->loadPlaylist, "Look the name up among playlists only");
    load->add_flag("--clip", options->loadClip, "Look the name up among clips only");
    load->add_flag("--on-air", options->loadOnAir, "A playlist loaded for on-air diffusion");
    On(load, context, [&context, options] {
        auto players = options->loadArguments;
        const std::string text = players.back();
        players.pop_back();
        const auto channels = ChannelSet(players, Guid::Player);
        const Catalogue where = options->loadPlaylist ? Catalogue::Playlists
                                : options->loadClip   ? Catalogue::Clips
                                                      : Catalogue::Both;
        const Material material = FindMaterial(context.GetSession(), text, where);
        if (material.kind == Material::Playlist) {
            auto params = NewParams<Commands::LoadSequencesCommandParams>();
            for (const auto& player : channels) {
                Commands::LoadSequenceCommandParam what;
                what.sequence = Data::Guid(material.umId);
                what.durationFromBeginning = options->loadAt;
                what.isForDiffusion = options->loadOnAir;
                params.playersParameters[player] = what;
            }
            return context.Send("LoadSequencesCommand", params);
        }
        auto params = NewParams<Commands::LoadClipsCommandParams>();
        for (const auto& player : channels) {
            Commands::LoadClipCommandParam what;
            what.clip = Data::Guid(material.umId);
            what.timepoint = options->loadAt;
            params.playersParameters[player] = what;
        }
        return context.Send("LoadClipsCommand", params);
    });

    auto* idle = Subcommand(app, "idle", "Unload players",
                            {"tessel idle 1:0", "tessel idle 1:0 1:1 --black"});
    Players(idle, options->players);
    idle->add_flag("--black", options->idleBlack, "Show black while idle");
    On(idle, context, [&context, options] {
        auto params = NewParams<Commands::GoIdleCommandParams>();
        params.players = ChannelSet(options->players, Guid::Player);
        params.setBlackScreen = options->idleBlack;
        return context.Send("GoIdleCommand", params);
    });
}

}  // namespace Korvo::Plexis::Tessel::Cli

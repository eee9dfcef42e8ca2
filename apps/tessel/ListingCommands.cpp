// The subcommands that read the server: ping, servers, channels, clips, trains, playlists.

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <memory>
#include <string>

#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetChannelsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetChannelsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetServersCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetTrainsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PingCommandParams.h>

#include "Lookup.h"
#include "Subcommands.h"
#include "Text.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Commands = HighLevelOperations::Commands;

namespace {

bool ContainsFolded(const std::string& text, const std::string& part) {
    return std::search(text.begin(), text.end(), part.begin(), part.end(), [](char a, char b) {
               return std::tolower(static_cast<unsigned char>(a)) ==
                      std::tolower(static_cast<unsigned char>(b));
           }) != text.end();
}

// Which clips `tessel clips` keeps.
struct ClipFilter {
    std::string name;
    std::string keyword;
    std::string umId;
    std::size_t limit = 0;

    bool Keeps(const Data::Clips::Clip& clip) const {
        const bool keywordMatches =
            keyword.empty() ||
            std::any_of(clip.keywords.begin(), clip.keywords.end(),
                        [&](const auto& word) { return ContainsFolded(TextOf(word), keyword); });
        return keywordMatches && (name.empty() || ContainsFolded(TextOf(clip.name), name)) &&
               clip.umId.compare(0, umId.size(), umId) == 0;
    }

    void Apply(Commands::CommandReply& reply) {
        auto* listing = dynamic_cast<Commands::GetClipsCommandReply*>(&reply);
        if (listing == nullptr) {
            return;
        }
        auto& clips = listing->clips;
        clips.erase(std::remove_if(clips.begin(), clips.end(),
                                   [&](const auto& clip) {
                                       const bool keep =
                                           Keeps(clip) && (limit == 0 || kept < limit);
                                       kept += keep ? 1 : 0;
                                       return !keep;
                                   }),
                    clips.end());
    }

private:
    std::size_t kept = 0;  // over every part of the listing
};

template <class Map, class Predicate>
void EraseIf(Map& map, Predicate predicate) {
    for (auto entry = map.begin(); entry != map.end();) {
        entry = predicate(*entry) ? map.erase(entry) : std::next(entry);
    }
}

// Leaves only the channels of `server` in a channel listing; 0 keeps them all.
void KeepServer(Commands::CommandReply& reply, int server) {
    auto* channels = dynamic_cast<Commands::GetChannelsCommandReply*>(&reply);
    if (server == 0 || channels == nullptr) {
        return;
    }
    const auto otherServer = [server](const auto& entry) {
        return entry.first.GetServer() != server;
    };
    EraseIf(channels->playerStates, otherServer);
    EraseIf(channels->recorderStates, otherServer);
}

struct ListingOptions {
    bool onNetwork = false;          // servers
    int channelServer = 0;           // channels
    ClipFilter clipFilter;           // clips
    std::string playlistId;          // playlists
    bool playlistWithoutElements = false;
};

}  // namespace

void AddListingCommands(CLI::App& app, Context& context) {
    const auto options = std::make_shared<ListingOptions>();
    auto* ping = Subcommand(app, "ping", "Check that the server answers, and how fast",
                            {"tessel ping", "tessel -c tcp://replay-1:5555 ping"});
    On(ping, context, [&context] {
        SignalGuard guard;
        const auto params = NewParams<Commands::PingCommandParams>();
        Session& session = context.GetSession();
        session.Connected();  // so that the time is the round trip only
        const auto start = std::chrono::steady_clock::now();
        auto output = context.Output();
        output.readable = [&context, start](std::ostream& out) {
            const std::chrono::duration<double, std::milli> elapsed =
                std::chrono::steady_clock::now() - start;
            char text[64];
            std::snprintf(text, sizeof text, " in %.1f ms", elapsed.count());
            out << "pong from " << context.settings.CommandEndPoint().Address() << text << '\n';
        };
        Execute(session, "PingCommand", params, output, context.out, context.err);
        return 0;
    });

    auto* servers = Subcommand(app, "servers", "List the servers",
                               {"tessel servers", "tessel servers --on-network --json"});
    servers->add_flag("--on-network", options->onNetwork, "Only the servers on the network");
    On(servers, context, [&context, options] {
        auto params = NewParams<Commands::GetServersCommandParams>();
        params.serverRange = options->onNetwork ? 1 : 0;
        return context.Send("GetServersCommand", params);
    });

    auto* channels = Subcommand(app, "channels", "Show the state of every player and recorder",
                                {"tessel channels", "tessel channels --server 2",
                                 "tessel channels --json | jq '.playerStates'"});
    channels->add_option("--server", options->channelServer, "Only the channels of this server")
        ->check(WholeInRange(0, kInt32Max));
    On(channels, context, [&context, options] {
        return context.Send(
            "GetChannelsCommand", NewParams<Commands::GetChannelsCommandParams>(),
            [options](Commands::CommandReply& reply) { KeepServer(reply, options->channelServer); });
    });

    auto* clips =
        Subcommand(app, "clips", "List clips, optionally filtered",
                   {"tessel clips", "tessel clips --name goal --limit 10",
                    "tessel clips --keyword replay --json", "tessel clips --umid 3fa4"});
    auto& filter = options->clipFilter;
    clips->add_option("--name", filter.name, "Only clips whose name contains this (any case)");
    clips->add_option("--keyword", filter.keyword,
                      "Only clips with a keyword containing this (any case)");
    clips->add_option("--umid", filter.umId, "Only clips whose umId starts with this");
    clips->add_option("--limit", filter.limit, "At most this many clips (0: all)")
        ->check(WholeInRange(0, kInt64Max));
    On(clips, context, [&context, options] {
        return context.Send(
            "GetClipsCommand", NewParams<Commands::GetClipsCommandParams>(),
            [options](Commands::CommandReply& reply) { options->clipFilter.Apply(reply); });
    });

    auto* trains = Subcommand(app, "trains", "List the trains that recorders feed",
                              {"tessel trains", "tessel trains --json"});
    On(trains, context, [&context] {
        return context.Send("GetTrainsCommand", NewParams<Commands::GetTrainsCommandParams>());
    });

    auto* playlists = Subcommand(app, "playlists", "List playlists",
                                 {"tessel playlists", "tessel playlists --id \"Playlist 2\" --json"});
    playlists->add_option("--id", options->playlistId,
                          "Only this playlist: its name, a umId prefix or its umId");
    playlists->add_flag("--no-elements", options->playlistWithoutElements,
                        "Leave the elements out");
    On(playlists, context, [&context, options] {
        auto params = NewParams<Commands::GetPlaylistsCommandParams>();
        params.elementMode = options->playlistWithoutElements ? 1 : 0;
        if (!options->playlistId.empty()) {
            params.idFilter = Data::Guid(
                FindMaterial(context.GetSession(), options->playlistId, Catalogue::Playlists).umId);
        }
        return context.Send("GetPlaylistsCommand", params);
    });
}

}  // namespace Korvo::Plexis::Tessel::Cli

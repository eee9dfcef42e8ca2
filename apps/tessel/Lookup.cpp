#include "Lookup.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandReply.h>

#include "Errors.h"
#include "Text.h"
#include "Tool.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Commands = HighLevelOperations::Commands;

namespace {

constexpr std::size_t kUmIdDigits = 64;
constexpr std::size_t kCandidatesShown = 10;

bool IsWholeUmId(const std::string& text) {
    return text.size() == kUmIdDigits &&
           std::all_of(text.begin(), text.end(),
                       [](unsigned char c) { return std::isxdigit(c) != 0; });
}

bool EqualFolded(const std::string& a, const std::string& b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](unsigned char x, unsigned char y) {
               return std::tolower(x) == std::tolower(y);
           });
}

// The matches of one text, the exact ones kept apart from the prefixes.
struct Matches {
    std::string text;
    std::vector<Material> exact;
    std::vector<Material> prefixed;

    void Offer(Material::Kind kind, const std::string& paddedUmId, const std::string& name) {
        const std::string umId = Trimmed(paddedUmId);
        if (umId == text || EqualFolded(name, text)) {
            exact.push_back({kind, umId, name});
        } else if (!text.empty() && umId.compare(0, text.size(), text) == 0) {
            prefixed.push_back({kind, umId, name});
        }
    }
};

const char* KindName(Material::Kind kind) { return kind == Material::Clip ? "clip" : "playlist"; }

}  // namespace

Material FindMaterial(Session& session, const std::string& text, Catalogue where) {
    if (IsWholeUmId(text)) {
        // Taken as it is: the server says when no such material exists.
        Material material;
        material.kind = where == Catalogue::Playlists ? Material::Playlist : Material::Clip;
        material.umId = text;
        if (where != Catalogue::Both) {
            return material;
        }
    }
    Matches matches{text, {}, {}};
    if (where != Catalogue::Playlists) {
        session.Call("GetClipsCommand", NewParams<Commands::GetClipsCommandParams>(),
                     [&](std::unique_ptr<Commands::CommandReply> reply, bool) {
                         if (const auto* listing =
                                 dynamic_cast<const Commands::GetClipsCommandReply*>(reply.get())) {
                             for (const auto& clip : listing->clips) {
                                 matches.Offer(Material::Clip, clip.umId, TextOf(clip.name));
                             }
                         }
                     });
    }
    if (where != Catalogue::Clips) {
        auto params = NewParams<Commands::GetPlaylistsCommandParams>();
        params.elementMode = 1;  // the elements are not needed to find a playlist
        session.Call("GetPlaylistsCommand", params,
                     [&](std::unique_ptr<Commands::CommandReply> reply, bool) {
                         if (const auto* listing =
                                 dynamic_cast<const Commands::GetPlaylistsCommandReply*>(
                                     reply.get())) {
                             for (const auto& playlist : listing->playlists) {
                                 matches.Offer(Material::Playlist, playlist.sequence.umId,
                                               TextOf(playlist.sequence.name));
                             }
                         }
                     });
    }
    const auto& found = matches.exact.empty() ? matches.prefixed : matches.exact;
    const char* what = where == Catalogue::Clips       ? "clip"
                       : where == Catalogue::Playlists ? "playlist"
                                                       : "clip or playlist";
    if (found.empty()) {
        if (IsWholeUmId(text)) {
            Material material;
            material.umId = text;
            return material;  // a clip the listing does not show yet; the server decides
        }
        throw CliError(ExitCode::Usage, "no " + std::string(what) + " is named \"" + text +
                                            "\" or has a umId starting with it (see tessel " +
                                            (where == Catalogue::Playlists ? "playlists" : "clips") +
                                            ")");
    }
    if (found.size() == 1) {
        return found.front();
    }
    std::string list;
    for (std::size_t index = 0; index < found.size() && index < kCandidatesShown; ++index) {
        list += std::string(index == 0 ? " " : ", ") + KindName(found[index].kind) + " " +
                found[index].umId + " \"" + found[index].name + "\"";
    }
    if (found.size() > kCandidatesShown) {
        list += ", and " + std::to_string(found.size() - kCandidatesShown) + " more";
    }
    throw CliError(ExitCode::Usage, "\"" + text + "\" matches " + std::to_string(found.size()) +
                                        " " +
                                        (where == Catalogue::Both ? std::string("clips or playlists")
                                                                  : what + std::string("s")) +
                                        " (give more of a umId):" + list);
}

}  // namespace Korvo::Plexis::Tessel::Cli

#pragma once

// Clips and playlists named the way a person types them: by name, by the first digits of their
// umId, or by the whole umId.

#include <string>

#include "Session.h"

namespace Korvo::Plexis::Tessel::Cli {

/// What a typed name stands for.
struct Material {
    enum Kind { Clip, Playlist } kind = Clip;
    std::string umId;  ///< without the blanks that fill it to a fixed width
    std::string name;  ///< as the server has it, in UTF-8
};

/// Which catalogues `FindMaterial` searches.
enum class Catalogue { Clips, Playlists, Both };

/// The one clip or playlist `text` names: a whole umId (64 hexadecimal digits, taken as it is),
/// else the entries whose umId starts with `text` or whose name is `text` (any case); an exact
/// umId or an exact name wins over a prefix. Reads the catalogues through `session`, keeping
/// only the matches. Throws `CliError` (Usage) when nothing matches, and when several do, listing
/// them (at most ten) so that the person can type more; and what `Session::Call` throws.
Material FindMaterial(Session& session, const std::string& text, Catalogue where);

}  // namespace Korvo::Plexis::Tessel::Cli

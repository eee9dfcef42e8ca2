#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/Sequences/Playlist.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// One playlist update: the playlist as it was and as it is to become.
struct UpdatePlaylistParams {
    Data::Sequences::Playlist oldPlaylist;
    Data::Sequences::Playlist newPlaylist;

    auto Fields() const { return std::tie(oldPlaylist, newPlaylist); }
    KORVO_COMPARED_BY_FIELDS(UpdatePlaylistParams)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

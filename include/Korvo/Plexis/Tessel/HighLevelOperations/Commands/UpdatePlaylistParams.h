#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Sequences/Playlist.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// One playlist update: the playlist as it was and as it is to become.
struct UpdatePlaylistParams {
    Data::Sequences::Playlist oldPlaylist;
    Data::Sequences::Playlist newPlaylist;

    KORVO_FIELDS(UpdatePlaylistParams, oldPlaylist, newPlaylist)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

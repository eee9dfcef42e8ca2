#pragma once

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/OperationStatus.h>
#include <Korvo/Plexis/Data/Sequences/Playlist.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The outcome of a playlist command for one playlist.
struct PlaylistResult {
    Data::OperationStatus status;        ///< outcome for this playlist
    Data::Sequences::Playlist playlist;  ///< the playlist concerned

    KORVO_FIELDS(PlaylistResult, status, playlist)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

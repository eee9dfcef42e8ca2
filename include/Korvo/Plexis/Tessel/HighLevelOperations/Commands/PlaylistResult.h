#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/OperationStatus.h>
#include <Korvo/Plexis/Data/Sequences/Playlist.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The outcome of a playlist command for one playlist.
struct PlaylistResult {
    Data::OperationStatus status;        ///< outcome for this playlist
    Data::Sequences::Playlist playlist;  ///< the playlist concerned

    auto Fields() const { return std::tie(status, playlist); }
    KORVO_COMPARED_BY_FIELDS(PlaylistResult)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

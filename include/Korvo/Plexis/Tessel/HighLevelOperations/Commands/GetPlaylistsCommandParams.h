#pragma once

#include <cstdint>
#include <optional>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Asks for playlists, optionally one identifier only.
struct GetPlaylistsCommandParams : CommandParams {
    std::int32_t elementMode = 0;  ///< how much of each playlist; values defined by the server
    std::optional<Data::Guid> idFilter;  ///< only the playlist with this identifier, when set

    KORVO_FIELDS(GetPlaylistsCommandParams, commandGuid, elementMode, idFilter)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

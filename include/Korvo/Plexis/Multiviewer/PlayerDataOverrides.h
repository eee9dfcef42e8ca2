#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>

namespace Korvo::Plexis::Multiviewer {

/// What a multiviewer shows for one player. Each item overrides the player's own data only when
/// set.
struct PlayerDataOverrides {
    Data::Channels::Guid playerGuid;  ///< the player these overrides apply to
    std::optional<std::int64_t> clipCreationIn;
    std::optional<std::int64_t> clipCreationOut;
    std::optional<bool> isFirstControlledMediaOutput;
    std::optional<std::int32_t> controlMode;
    std::optional<std::int32_t> programMode;
    std::optional<bool> isPostRollEnabled;
    std::optional<std::string> message;  ///< text shown for the player

    auto Fields() const {
        return std::tie(playerGuid, clipCreationIn, clipCreationOut, isFirstControlledMediaOutput,
                        controlMode, programMode, isPostRollEnabled, message);
    }
    KORVO_COMPARED_BY_FIELDS(PlayerDataOverrides)
};

}  // namespace Korvo::Plexis::Multiviewer

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>

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

    KORVO_FIELDS(PlayerDataOverrides, playerGuid, clipCreationIn, clipCreationOut,
                 isFirstControlledMediaOutput, controlMode, programMode, isPostRollEnabled, message)
};

}  // namespace Korvo::Plexis::Multiviewer

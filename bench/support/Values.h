#pragma once

// Record values the benchmark programs share.

#include <Korvo/Plexis/Notification/PlayerStateChangedEventArgs.h>

namespace Korvo::Bench {

/// A player state notification with every field set, the player's state included.
Plexis::Notification::PlayerStateChangedEventArgs PlayerStateChangedSample();

}  // namespace Korvo::Bench

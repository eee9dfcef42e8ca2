#pragma once

namespace Korvo::Plexis::Notification {

/// The channel status notifications.
struct ChannelStatusEvent {
    enum Type : int {
        RecorderStateChanged = 0,
        PlayerStateChanged = 1,
    };
};

}  // namespace Korvo::Plexis::Notification

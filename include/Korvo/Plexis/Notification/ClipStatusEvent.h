#pragma once

namespace Korvo::Plexis::Notification {

/// The clip status notifications.
struct ClipStatusEvent {
    enum Type : int {
        RecordingRangesChanged = 0,
    };
};

}  // namespace Korvo::Plexis::Notification

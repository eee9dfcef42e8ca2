#pragma once

namespace Korvo::Plexis::Notification {

/// The clip and angles-group notifications. The numbering is shared with the server: the values
/// this client never receives (the failures) keep their places.
struct ClipCommandEvent {
    enum Type : int {
        ClipCreationStarted = 0,
        ClipCreationFinished = 1,
        ClipCreationFailed = 2,
        ClipUpdateFinished = 3,
        ClipUpdateFailed = 4,
        ClipDeletionFinished = 5,
        ClipDeletionFailed = 6,
        ClipMoveStarted = 7,
        ClipMoveFinished = 8,
        ClipMoveFailed = 9,
        MassClipUpdateFinished = 10,
        MassClipUpdateFailed = 11,
        MassClipDeletionFinished = 12,
        MassClipDeletionFailed = 13,
        AnglesGroupCreationFinished = 14,
        AnglesGroupCreationFailed = 15,
        AnglesGroupUpdateFinished = 16,
        AnglesGroupUpdateFailed = 17,
        AnglesGroupDeletionFinished = 18,
    };
};

}  // namespace Korvo::Plexis::Notification

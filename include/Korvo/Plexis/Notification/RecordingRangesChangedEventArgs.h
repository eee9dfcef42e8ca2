#pragma once

#include <vector>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/Clips/RecordingRange.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ClipStatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// The recorded ranges of a recorder's train changed ("RecordingRangesChanged").
class RecordingRangesChangedEventArgs : public ClipStatusEventArgs {
public:
    Data::Channels::Guid channelGuid;                 ///< the recorder whose train changed
    std::vector<Data::Clips::RecordingRange> ranges;  ///< the train's recorded ranges now
    bool isRecording = false;                         ///< the recorder is recording now
    bool isLoopRecording = false;                     ///< the train is recorded in a loop

    KORVO_FIELDS(RecordingRangesChangedEventArgs, KORVO_BASE_FIELDS(ClipStatusEventArgs),
                 channelGuid, ranges, isRecording, isLoopRecording)
};

}  // namespace Korvo::Plexis::Notification

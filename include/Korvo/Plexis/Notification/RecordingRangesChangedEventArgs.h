#pragma once

#include <tuple>
#include <vector>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/Clips/RecordingRange.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/ClipStatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// The recorded ranges of a recorder's train changed ("RecordingRangesChanged").
class RecordingRangesChangedEventArgs : public ClipStatusEventArgs {
public:
    Data::Channels::Guid channelGuid;                 ///< the recorder whose train changed
    std::vector<Data::Clips::RecordingRange> ranges;  ///< the train's recorded ranges now
    bool isRecording = false;                         ///< the recorder is recording now
    bool isLoopRecording = false;                     ///< the train is recorded in a loop

    auto Fields() const {
        return std::tuple_cat(ClipStatusEventArgs::Fields(),
                              std::tie(channelGuid, ranges, isRecording, isLoopRecording));
    }
    KORVO_COMPARED_BY_FIELDS(RecordingRangesChangedEventArgs)
};

}  // namespace Korvo::Plexis::Notification

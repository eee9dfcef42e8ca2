#pragma once

#include <string>
#include <tuple>
#include <vector>

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/Clips/RecordingRange.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>

namespace Korvo::Plexis::Data::Clips {

/// A train: the continuous recording a recorder feeds, with the ranges recorded so far.
struct Train {
    Clip clip;                                    ///< the train's clip record
    std::vector<RecordingRange> recordingRanges;  ///< recorded ranges, in the server's order
    bool isRecording = false;                     ///< a recorder is feeding the train now
    bool isLoopRecording = false;  ///< recorded in a loop, overwriting its oldest part
    std::string recorderName;      ///< name of the recorder that feeds the train

    auto Fields() const {
        return std::tie(clip, recordingRanges, isRecording, isLoopRecording, recorderName);
    }
    KORVO_COMPARED_BY_FIELDS(Train)
};

}  // namespace Korvo::Plexis::Data::Clips

#pragma once

#include <string>
#include <vector>

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/Clips/RecordingRange.h>
#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Data::Clips {

/// A train: the continuous recording a recorder feeds, with the ranges recorded so far.
struct Train {
    Clip clip;                                    ///< the train's clip record
    std::vector<RecordingRange> recordingRanges;  ///< recorded ranges, in the server's order
    bool isRecording = false;                     ///< a recorder is feeding the train now
    bool isLoopRecording = false;  ///< recorded in a loop, overwriting its oldest part
    std::string recorderName;      ///< name of the recorder that feeds the train

    KORVO_FIELDS(Train, clip, recordingRanges, isRecording, isLoopRecording, recorderName)
};

}  // namespace Korvo::Plexis::Data::Clips

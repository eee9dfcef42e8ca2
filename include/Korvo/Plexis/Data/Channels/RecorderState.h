#pragma once

#include <cstdint>
#include <string>

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Data::Channels {

/// The state of a recorder channel. Value sets are the server's.
struct RecorderState {
    std::int64_t timestamp = 0;             ///< server clock when the state was taken
    std::int32_t channelNumber = 0;         ///< the channel's number on its server
    std::string channelName;                ///< the channel's name
    std::int32_t serverId = 0;              ///< the server that hosts the channel
    bool isRecording = false;               ///< the recorder is recording now
    std::int64_t recordStartTimepoint = 0;  ///< time point where the current recording began
    std::int64_t currentTimepoint = 0;      ///< time point being recorded
    std::string currentTimecode;            ///< time code being recorded, as displayed
    std::string recordStartTimecode;        ///< time code where the current recording began
    std::int32_t recordMode = 0;            ///< continuous, loop, ...
    std::int64_t recordedFields = 0;        ///< fields recorded so far
    std::int64_t remainingFields = 0;       ///< fields of storage left
    Clips::Clip clip;                       ///< the recorder's clip

    KORVO_FIELDS(RecorderState, timestamp, channelNumber, channelName, serverId, isRecording,
                 recordStartTimepoint, currentTimepoint, currentTimecode, recordStartTimecode,
                 recordMode, recordedFields, remainingFields, clip)
};

}  // namespace Korvo::Plexis::Data::Channels

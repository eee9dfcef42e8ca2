#pragma once

#include <cstdint>
#include <string>

#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Data::Clips {

/// A stretch of a train that has been recorded.
struct RecordingRange {
    std::int64_t inTimepoint = 0;   ///< time point where the recorded stretch begins
    std::int64_t outTimepoint = 0;  ///< time point where the recorded stretch ends
    std::string inTimecode;         ///< time code of the first field, as displayed
    std::string outTimecode;        ///< time code of the last field, as displayed

    KORVO_FIELDS(RecordingRange, inTimepoint, outTimepoint, inTimecode, outTimecode)
};

}  // namespace Korvo::Plexis::Data::Clips

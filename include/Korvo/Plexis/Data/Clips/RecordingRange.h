#pragma once

#include <cstdint>
#include <string>
#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>

namespace Korvo::Plexis::Data::Clips {

/// A stretch of a train that has been recorded.
struct RecordingRange {
    std::int64_t inTimepoint = 0;   ///< time point where the recorded stretch begins
    std::int64_t outTimepoint = 0;  ///< time point where the recorded stretch ends
    std::string inTimecode;         ///< time code of the first field, as displayed
    std::string outTimecode;        ///< time code of the last field, as displayed

    auto Fields() const { return std::tie(inTimepoint, outTimepoint, inTimecode, outTimecode); }
    KORVO_COMPARED_BY_FIELDS(RecordingRange)
};

}  // namespace Korvo::Plexis::Data::Clips

#pragma once

#include <cstdint>

#include <Korvo/TimePoints/TimeCode.h>

namespace Korvo::TimePoints {

/// The parts of a time code, checked before one is built. Fill the fields and call `Build()`.
/// A freshly made builder holds a clip's default: 1 January 1900, 00:00:00, frame 0 at 50 / 1
/// frames per second, non-drop, from the date. A value type; not for concurrent changes.
class TimeCodeBuilder {
public:
    std::int32_t year = 1900;
    std::int32_t month = 1;  ///< 1 to 12
    std::int32_t day = 1;    ///< 1 to the month's length
    std::int32_t hour = 0;
    std::int32_t minute = 0;
    std::int32_t second = 0;
    std::int32_t sample = 0;          ///< frame within the second
    std::int64_t rateNumerator = 50;  ///< frames per second (the denominator must be 1)
    std::int64_t rateDenominator = 1;
    bool dropFrame = false;
    /// When true the time code counts from 1 January 1900; when false only the time of day
    /// counts (the date is still checked).
    bool fromDate = true;

    /// Checks the parts in a fixed order (year 1900 to 2261, month, day within the month's length
    /// in that year, hour and second at most 23 and 59, minute 0 to 59, denominator 1, frame
    /// below the numerator, then for drop-frame the frames that do not exist and the rates 30 and
    /// 60 only) and returns true when all pass. Throws `std::out_of_range` whose message names the
    /// first part that fails. Never returns false.
    bool IsValidToBuildWithexception() const;

    /// A valid time code at this rate whose sample is counted by `TimeCode::DateTimeToSample`.
    /// Throws `std::out_of_range` as `IsValidToBuildWithexception()` does.
    TimeCode Build() const;
};

}  // namespace Korvo::TimePoints

#include <Korvo/TimePoints/TimeCode.h>

#include <algorithm>

#include <Korvo/TimePoints/CalendarTools/DayPerMonth.h>
#include <Korvo/TimePoints/TimeCodeBuilder.h>

namespace Korvo::TimePoints {

namespace {

constexpr std::int64_t kFirstYear = 1900;

// Leap years from year 1 to `year` (year >= 1).
constexpr std::int64_t LeapYearsThrough(std::int64_t year) {
    return year / 4 - year / 100 + year / 400;
}

// Whole days from 1 January 1900 to the given date (day 1 of January 1900 is day 0).
std::int64_t DaysSinceFirstYear(std::int32_t year, std::int32_t month, std::int32_t day) {
    std::int64_t days = 0;
    if (year > kFirstYear) {
        const std::int64_t lastWholeYear = year - 1;
        days = (lastWholeYear - kFirstYear + 1) * 365 + LeapYearsThrough(lastWholeYear) -
               LeapYearsThrough(kFirstYear - 1);
    }
    const auto& lengths =
        CalendarTools::DayPerMonth::dayPerMonth[CalendarTools::DayPerMonth::IsLeapYear(year) ? 1
                                                                                             : 0];
    const std::int32_t wholeMonths = std::min<std::int32_t>(month - 1, 12);
    for (std::int32_t index = 0; index < wholeMonths; ++index) {
        days += lengths[index];
    }
    return days + day - 1;
}

}  // namespace

const TimeCode& TimeCode::DefaultForClip() {
    static const TimeCode defaultTimeCode = TimeCodeBuilder().Build();
    return defaultTimeCode;
}

std::int64_t TimeCode::DateTimeToSample(std::int32_t year, std::int32_t month, std::int32_t day,
                                        std::int32_t hour, std::int32_t minute, std::int32_t second,
                                        std::int32_t frame) {
    const std::int64_t days = DaysSinceFirstYear(year, month, day);
    const std::int64_t h = hour;
    const std::int64_t m = minute;
    const std::int64_t s = second;
    const std::int64_t tenMinutes = m / 10;
    const std::int64_t rate = rateNumerator;
    // At 30 and 60 frames per second, drop-frame counting leaves out 2 (or 4) frame numbers at
    // the start of every minute except each tenth one, so a day, an hour and a minute hold fewer
    // frames; the ten-minute term puts back the frames of the minutes that keep them.
    if (rate == 30) {
        sample = dropFrame ? days * 2589408 + h * 107892 + m * 1798 + 2 * tenMinutes + s * 30
                           : days * 2592000 + h * 108000 + m * 1800 + s * 30;
    } else if (rate == 60) {
        sample = dropFrame ? days * 5178816 + h * 215784 + m * 3596 + 4 * tenMinutes + s * 60
                           : days * 5184000 + h * 216000 + m * 3600 + s * 60;
    } else {
        // Other rates have no drop-frame counting of their own: in drop-frame the ten-minute term
        // is added but no frames are left out. The asymmetry is deliberate and must stay, since
        // sample counts already stored were made this way.
        sample = days * 86400 * rate + h * 3600 * rate + m * 60 * rate + s * rate +
                 (dropFrame ? 2 * tenMinutes : 0);
    }
    sample += frame;
    return sample;
}

}  // namespace Korvo::TimePoints

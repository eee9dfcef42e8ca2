#pragma once

#include <cstdint>

namespace Korvo::TimePoints::CalendarTools {

/// Month lengths of the Gregorian calendar. Constant data; safe from any thread.
struct DayPerMonth {
    /// Days in each month, January first: row 0 for a common year, row 1 for a leap year.
    static constexpr std::int32_t dayPerMonth[2][12] = {
        {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31},
        {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31},
    };

    /// True when `year` is divisible by 4 and not by 100, or divisible by 400.
    static constexpr bool IsLeapYear(std::int32_t year) {
        return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    }

    /// Length of `month` (1 to 12) in `year`. The month is not checked: outside 1 to 12 the
    /// behaviour is undefined.
    static constexpr std::int32_t DaysInMonth(std::int32_t year, std::int32_t month) {
        return dayPerMonth[IsLeapYear(year) ? 1 : 0][month - 1];
    }
};

}  // namespace Korvo::TimePoints::CalendarTools

#include <Korvo/TimePoints/TimeCodeBuilder.h>

#include <stdexcept>
#include <string>

#include <Korvo/TimePoints/CalendarTools/DayPerMonth.h>

namespace Korvo::TimePoints {

namespace {

constexpr std::int32_t kFirstYear = 1900;
constexpr std::int32_t kLastYear = 2261;

[[noreturn]] void Fail(const std::string& message) {
    throw std::out_of_range(message);
}

std::string Text(std::int64_t value) {
    return std::to_string(value);
}

bool HasDropFrameCounting(std::int64_t rate) {
    return rate == 30 || rate == 60;
}

}  // namespace

bool TimeCodeBuilder::IsValidToBuildWithexception() const {
    // The messages are read by applications and logs as they stand, wording included.
    if (year < kFirstYear || year > kLastYear) {
        Fail("year " + Text(year) + " must be between " + Text(kFirstYear) + " and " +
             Text(kLastYear));
    }
    if (month < 1 || month > 12) {
        Fail("month " + Text(month) + " must be between 1 and 12");
    }
    const std::int32_t monthLength = CalendarTools::DayPerMonth::DaysInMonth(year, month);
    if (day < 1 || day > monthLength) {
        Fail("day " + Text(day) + "is negative or greater than " + Text(monthLength) +
             " in month " + Text(month));
    }
    // Hour and second have no lower bound check.
    if (hour > 23) {
        Fail("hour " + Text(hour) + " must be between 0 and 23");
    }
    if (minute < 0 || minute > 59) {
        Fail("minute " + Text(minute) + " must be between 0 and 59");
    }
    if (second > 59) {
        Fail("second " + Text(second) + " must be between 0 and 59");
    }
    if (rateDenominator != 1) {
        Fail("Denominator " + Text(rateDenominator) + " must be between equals to 1");
    }
    if (static_cast<std::int64_t>(sample) >= rateNumerator) {
        Fail("Sample " + Text(sample) + " is greater than numerator ratio " + Text(rateNumerator));
    }
    if (!dropFrame) {
        return true;
    }
    // Drop-frame counting skips the first frame numbers of every minute but each tenth one: 2 of
    // them at 30 frames per second, 4 otherwise.
    const std::int32_t lastSkippedFrame = rateNumerator == 30 ? 1 : 3;
    if (minute % 10 != 0 && second == 0 && sample <= lastSkippedFrame) {
        Fail("In dropped TimeCode, this value doesn't exist " + Text(minute) + ":" + Text(second) +
             ";" + Text(sample));
    }
    if (rateNumerator == 30) {
        return true;
    }
    if (!HasDropFrameCounting(rateNumerator)) {
        Fail("Rate " + Text(rateNumerator) + " / " + Text(rateDenominator) +
             " is not compatible with drop TC format");
    }
    return true;
}

TimeCode TimeCodeBuilder::Build() const {
    IsValidToBuildWithexception();
    TimeCode timeCode(rateNumerator, rateDenominator, 0, dropFrame, true);
    if (fromDate) {
        timeCode.DateTimeToSample(year, month, day, hour, minute, second, sample);
    } else {
        timeCode.DateTimeToSample(kFirstYear, 1, 1, hour, minute, second, sample);
    }
    if (!HasDropFrameCounting(rateNumerator)) {
        timeCode.dropFrame = false;
    }
    return timeCode;
}

}  // namespace Korvo::TimePoints

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <Korvo/TimePoints/TimeCode.h>
#include <Korvo/TimePoints/TimeCodeBuilder.h>

namespace {

using Korvo::TimePoints::TimeCode;
using Korvo::TimePoints::TimeCodeBuilder;

struct BuilderCase {
    std::function<void(TimeCodeBuilder&)> change;
    const char* message;  // nullptr when the builder is valid
};

void ExpectOutcomes(const std::vector<BuilderCase>& rows) {
    for (const BuilderCase& row : rows) {
        TimeCodeBuilder builder;
        row.change(builder);
        try {
            EXPECT_TRUE(builder.IsValidToBuildWithexception());
            EXPECT_EQ(row.message, nullptr) << "accepted";
        } catch (const std::out_of_range& error) {
            EXPECT_EQ(error.what(), std::string(row.message ? row.message : "(valid)"));
        }
    }
}

std::function<void(TimeCodeBuilder&)> Date(int year, int month, int day) {
    return [=](TimeCodeBuilder& b) {
        b.year = year;
        b.month = month;
        b.day = day;
    };
}

std::function<void(TimeCodeBuilder&)> Drop(int rate, int minute, int second, int frame) {
    return [=](TimeCodeBuilder& b) {
        b.rateNumerator = rate;
        b.minute = minute;
        b.second = second;
        b.sample = frame;
        b.dropFrame = true;
    };
}

TEST(TimeCodeBuilder, DateOutsideTheCalendarNamesTheFirstBadPart) {
    ExpectOutcomes({
        {Date(2261, 12, 31), nullptr},
        {Date(2262, 1, 1), "year 2262 must be between 1900 and 2261"},
        {Date(1899, 13, 40), "year 1899 must be between 1900 and 2261"},  // first failure wins
        {Date(2020, 0, 1), "month 0 must be between 1 and 12"},
        {Date(2020, 13, 1), "month 13 must be between 1 and 12"},
        {Date(2000, 2, 29), nullptr},
        {Date(2004, 2, 29), nullptr},
        {Date(1900, 2, 29), "day 29is negative or greater than 28 in month 2"},
        {Date(2100, 2, 29), "day 29is negative or greater than 28 in month 2"},
        {Date(2021, 4, 0), "day 0is negative or greater than 30 in month 4"},
    });
}

TEST(TimeCodeBuilder, TimeOfDayAndRateAreCheckedWithTheirOwnMessages) {
    ExpectOutcomes({
        {[](auto& b) { b.hour = 24; }, "hour 24 must be between 0 and 23"},
        {[](auto& b) { b.hour = b.second = -1; }, nullptr},  // no lower bound on either
        {[](auto& b) { b.minute = -1; }, "minute -1 must be between 0 and 59"},
        {[](auto& b) { b.second = 60; }, "second 60 must be between 0 and 59"},
        {[](auto& b) { b.rateDenominator = 1001; }, "Denominator 1001 must be between equals to 1"},
        {[](auto& b) { b.sample = 49; }, nullptr},
        {[](auto& b) { b.sample = 50; }, "Sample 50 is greater than numerator ratio 50"},
    });
}

TEST(TimeCodeBuilder, DropFrameRejectsSkippedFramesAndRatesWithoutDropCounting) {
    ExpectOutcomes({
        {Drop(30, 1, 0, 0), "In dropped TimeCode, this value doesn't exist 1:0;0"},
        {Drop(30, 1, 0, 1), "In dropped TimeCode, this value doesn't exist 1:0;1"},
        {Drop(30, 1, 0, 2), nullptr},
        {Drop(30, 10, 0, 0), nullptr},
        {Drop(60, 1, 0, 3), "In dropped TimeCode, this value doesn't exist 1:0;3"},
        {Drop(60, 1, 0, 4), nullptr},
        {Drop(25, 1, 0, 3), "In dropped TimeCode, this value doesn't exist 1:0;3"},
        {Drop(25, 1, 0, 4), "Rate 25 / 1 is not compatible with drop TC format"},
    });
}

TEST(TimeCode, DateTimeToSampleCountsFramesFromTheFirstDayOf1900) {
    for (const std::int64_t rate : {25, 30, 50, 60}) {
        for (const bool drop : {false, true}) {
            EXPECT_EQ(TimeCode(rate, 1, 99, drop, true).DateTimeToSample(1900, 1, 1, 0, 0, 0, 0),
                      0);
        }
    }
    const auto count = [](std::int64_t rate, bool drop, int year, int month, int day, int hour,
                          int minute) {
        TimeCode timeCode(rate, 1, 0, drop, true);
        const std::int64_t result = timeCode.DateTimeToSample(year, month, day, hour, minute, 5, 7);
        EXPECT_EQ(timeCode.Sample(), result);
        return result;
    };
    EXPECT_EQ(count(30, false, 1900, 1, 2, 0, 0), 2592000 + 150 + 7);
    EXPECT_EQ(count(30, true, 1900, 1, 2, 0, 0), 2589408 + 150 + 7);
    // Drop-frame puts back the frames of each tenth minute; other rates add them without dropping.
    EXPECT_EQ(count(30, true, 1900, 1, 1, 1, 11), 107892 + 11 * 1798 + 2 + 150 + 7);
    EXPECT_EQ(count(60, true, 1900, 1, 1, 1, 11), 215784 + 11 * 3596 + 4 + 300 + 7);
    EXPECT_EQ(count(25, true, 1900, 1, 1, 1, 11), (3600 + 660 + 5) * 25 + 7 + 2);
    // 1904 and 2000 are leap years, 1900 is not.
    EXPECT_EQ(count(50, false, 1905, 3, 1, 0, 0), (365 * 5 + 1 + 59) * 86400LL * 50 + 257);
    EXPECT_EQ(count(25, false, 2000, 3, 1, 0, 0), (100 * 365 + 24 + 60) * 86400LL * 25 + 132);
}

TEST(TimeCodeBuilder, BuildCountsFromTheDateOrFromMidnight) {
    TimeCodeBuilder builder;
    builder.day = 2;
    builder.rateNumerator = 30;
    builder.dropFrame = true;
    EXPECT_EQ(builder.Build(), TimeCode(30, 1, 2589408, true, true));
    builder.fromDate = false;
    builder.hour = 1;
    EXPECT_EQ(builder.Build(), TimeCode(30, 1, 107892, true, true));
    builder.month = 13;
    EXPECT_THROW(builder.Build(), std::out_of_range);
}

}  // namespace

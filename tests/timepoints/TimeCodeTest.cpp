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

void ExpectOutcome(const BuilderCase& row, int index) {
    SCOPED_TRACE("row " + std::to_string(index));
    TimeCodeBuilder builder;
    row.change(builder);
    if (row.message == nullptr) {
        EXPECT_TRUE(builder.IsValidToBuildWithexception());
        return;
    }
    try {
        builder.IsValidToBuildWithexception();
        ADD_FAILURE() << "expected: " << row.message;
    } catch (const std::out_of_range& error) {
        EXPECT_EQ(std::string(error.what()), row.message);
    }
}

void ExpectOutcomes(const std::vector<BuilderCase>& rows) {
    for (size_t index = 0; index < rows.size(); ++index) {
        ExpectOutcome(rows[index], static_cast<int>(index));
    }
}

std::function<void(TimeCodeBuilder&)> Date(int year, int month, int day) {
    return [=](TimeCodeBuilder& b) {
        b.year = year;
        b.month = month;
        b.day = day;
    };
}

TEST(TimeCodeBuilder, DateOutsideTheCalendarNamesTheFirstBadPart) {
    ExpectOutcomes({
        {Date(2261, 12, 31), nullptr},
        {Date(2262, 1, 1), "year 2262 must be between 1900 and 2261"},
        {Date(1899, 12, 31), "year 1899 must be between 1900 and 2261"},
        // The first failing part wins, even when later parts are wrong too.
        {Date(1899, 13, 40), "year 1899 must be between 1900 and 2261"},
        {Date(2020, 0, 1), "month 0 must be between 1 and 12"},
        {Date(2020, 13, 40), "month 13 must be between 1 and 12"},
        {Date(2000, 2, 29), nullptr},
        {Date(2004, 2, 29), nullptr},
        {Date(1900, 2, 29), "day 29is negative or greater than 28 in month 2"},
        {Date(2100, 2, 29), "day 29is negative or greater than 28 in month 2"},
        {Date(2021, 4, 31), "day 31is negative or greater than 30 in month 4"},
        {Date(2021, 1, 0), "day 0is negative or greater than 31 in month 1"},
    });
}

TEST(TimeCodeBuilder, TimeOfDayAndRateAreCheckedWithTheirOwnMessages) {
    ExpectOutcomes({
        {[](auto& b) { b.hour = 24; }, "hour 24 must be between 0 and 23"},
        {[](auto& b) {
             b.hour = -1;
             b.second = -1;
         },
         nullptr},  // no lower bound on either
        {[](auto& b) { b.minute = -1; }, "minute -1 must be between 0 and 59"},
        {[](auto& b) { b.minute = 60; }, "minute 60 must be between 0 and 59"},
        {[](auto& b) { b.second = 60; }, "second 60 must be between 0 and 59"},
        {[](auto& b) { b.rateDenominator = 1001; }, "Denominator 1001 must be between equals to 1"},
        {[](auto& b) { b.sample = 49; }, nullptr},
        {[](auto& b) { b.sample = 50; }, "Sample 50 is greater than numerator ratio 50"},
    });
}

TEST(TimeCodeBuilder, DropFrameRejectsSkippedFramesAndRatesWithoutDropCounting) {
    const auto drop = [](int rate, int minute, int second, int frame) {
        return [=](TimeCodeBuilder& b) {
            b.rateNumerator = rate;
            b.minute = minute;
            b.second = second;
            b.sample = frame;
            b.dropFrame = true;
        };
    };
    ExpectOutcomes({
        {drop(30, 1, 0, 0), "In dropped TimeCode, this value doesn't exist 1:0;0"},
        {drop(30, 1, 0, 1), "In dropped TimeCode, this value doesn't exist 1:0;1"},
        {drop(30, 1, 0, 2), nullptr},
        {drop(30, 10, 0, 0), nullptr},
        {drop(30, 1, 1, 0), nullptr},
        {drop(60, 1, 0, 3), "In dropped TimeCode, this value doesn't exist 1:0;3"},
        {drop(60, 1, 0, 4), nullptr},
        {drop(25, 0, 0, 0), "Rate 25 / 1 is not compatible with drop TC format"},
        {drop(25, 1, 0, 2), "In dropped TimeCode, this value doesn't exist 1:0;2"},
        {drop(25, 1, 0, 4), "Rate 25 / 1 is not compatible with drop TC format"},
    });
}

TEST(TimeCode, DateTimeToSampleCountsFromTheFirstDayOf1900) {
    for (const std::int64_t rate : {24, 25, 30, 50, 60}) {
        for (const bool drop : {false, true}) {
            TimeCode start(rate, 1, 99, drop, true);
            EXPECT_EQ(start.DateTimeToSample(1900, 1, 1, 0, 0, 0, 0), 0) << rate << drop;
            EXPECT_EQ(start.Sample(), 0);
        }
    }
    struct Row {
        std::int64_t rate;
        bool drop;
        int year, month, day, hour, minute, second, frame;
        std::int64_t expected;
    };
    const Row rows[] = {
        {30, false, 1900, 1, 2, 0, 0, 0, 0, 2592000},
        {30, true, 1900, 1, 2, 0, 0, 0, 0, 2589408},
        {60, false, 1900, 1, 2, 0, 0, 0, 0, 5184000},
        {60, true, 1900, 1, 2, 0, 0, 0, 0, 5178816},
        // One hour, eleven minutes, 5 s, frame 7: the drop-frame counts put back the frames of
        // minute 10.
        {30, true, 1900, 1, 1, 1, 11, 5, 7, 107892 + 11 * 1798 + 2 + 150 + 7},
        {60, true, 1900, 1, 1, 1, 11, 5, 7, 215784 + 11 * 3596 + 4 + 300 + 7},
        {25, false, 1900, 1, 1, 1, 11, 5, 7, (3600 + 660 + 5) * 25 + 7},
        // Other rates add the ten-minute term in drop-frame without leaving frames out.
        {25, true, 1900, 1, 1, 1, 11, 5, 7, (3600 + 660 + 5) * 25 + 7 + 2},
        // 1900 is a common year, 1904 a leap year: 1 March 1905 is 365 * 5 + 1 + 59 days on.
        {50, false, 1905, 3, 1, 0, 0, 0, 0, (365 * 5 + 1 + 59) * 86400LL * 50},
        // 2000 is a leap year: 1 January 2001 is 101 years and 25 leap days on.
        {25, false, 2001, 1, 1, 0, 0, 0, 0, (101 * 365 + 25) * 86400LL * 25},
        {25, false, 2000, 3, 1, 0, 0, 0, 0, (100 * 365 + 24 + 31 + 29) * 86400LL * 25},
    };
    for (const Row& row : rows) {
        TimeCode timeCode(row.rate, 1, 0, row.drop, true);
        EXPECT_EQ(timeCode.DateTimeToSample(row.year, row.month, row.day, row.hour, row.minute,
                                            row.second, row.frame),
                  row.expected)
            << row.rate << (row.drop ? " drop " : " ") << row.year << "-" << row.month << "-"
            << row.day;
        EXPECT_EQ(timeCode.Sample(), row.expected);
    }
}

TEST(TimeCode, ClipDefaultIsSampleZeroAt50NonDropBuiltOnce) {
    const TimeCode& first = TimeCode::DefaultForClip();
    EXPECT_EQ(first, TimeCode(50, 1, 0, false, true));
    EXPECT_EQ(&first, &TimeCode::DefaultForClip());
}

TEST(TimeCodeBuilder, BuildCountsFromTheDateOrFromMidnightAndKeepsDropOnlyWhereItExists) {
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

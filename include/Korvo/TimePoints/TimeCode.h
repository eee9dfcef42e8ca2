#pragma once

#include <cstdint>

namespace Korvo::TimePoints {

/// A time code: a frame count from 1 January 1900, 00:00:00, frame 0, at a frame rate, counted
/// in drop-frame or non-drop-frame fashion. A value type; one object must not be changed by two
/// threads at once, distinct objects are independent.
class TimeCode {
public:
    /// An invalid time code at 0 / 1 frames per second, sample 0.
    TimeCode() = default;

    TimeCode(std::int64_t rateNumerator, std::int64_t rateDenominator, std::int64_t sample,
             bool dropFrame, bool valid)
        : rateNumerator(rateNumerator),
          rateDenominator(rateDenominator),
          sample(sample),
          dropFrame(dropFrame),
          valid(valid) {}

    /// The time code a clip starts with: 1 January 1900, 00:00:00, frame 0 at 50 / 1 frames per
    /// second, non-drop, valid; that is sample 0. Built once per process on first use
    /// (thread-safe); never throws.
    static const TimeCode& DefaultForClip();

    /// Counts the frames from 1 January 1900, 00:00:00, frame 0 to the given date, time of day and
    /// frame within the second, at this time code's rate and counting (the rates 30 and 60 have
    /// their own drop-frame counts; any other rate in drop-frame adds 2 frames per ten minutes
    /// without removing any), stores the count as this time code's sample and returns it. The
    /// arguments are not validated (TimeCodeBuilder does that): a year up to 1900 counts no whole
    /// year, a month outside 1 to 12 counts at most twelve whole months. Never throws.
    std::int64_t DateTimeToSample(std::int32_t year, std::int32_t month, std::int32_t day,
                                  std::int32_t hour, std::int32_t minute, std::int32_t second,
                                  std::int32_t sample);

    std::int64_t RateNumerator() const { return rateNumerator; }
    std::int64_t RateDenominator() const { return rateDenominator; }
    /// Frames counted from 1 January 1900, 00:00:00, frame 0.
    std::int64_t Sample() const { return sample; }
    bool IsDropFrame() const { return dropFrame; }
    bool IsValid() const { return valid; }

    bool operator==(const TimeCode& other) const {
        return rateNumerator == other.rateNumerator && rateDenominator == other.rateDenominator &&
               sample == other.sample && dropFrame == other.dropFrame && valid == other.valid;
    }
    bool operator!=(const TimeCode& other) const { return !(*this == other); }

private:
    friend class TimeCodeBuilder;

    std::int64_t rateNumerator = 0;
    std::int64_t rateDenominator = 1;
    std::int64_t sample = 0;
    bool dropFrame = false;
    bool valid = false;
};

}  // namespace Korvo::TimePoints

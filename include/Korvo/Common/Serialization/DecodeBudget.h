#pragma once

#include <cstdint>

namespace Korvo::Common::Serialization {

/// How much memory decoding one received frame may take: the strings, list elements and set and
/// map entries of the decoded record together may take at most `bytesPerFrameByte` times the
/// frame's length plus `bytesPerFrame`, counted at their in-memory size before each is
/// allocated. A frame that needs more fails like any other unparsable input
/// (`InvalidFormatException`), having allocated no more than the budget.
///
/// The defaults (32 times the frame plus 1 MiB) leave room for sparse records (a list of records
/// that carry only a few of their fields takes up to a few dozen times its wire size) while
/// keeping the record decoded from a 1 MiB frame under 33 MiB. The domain object converted from
/// the record is not charged; it takes about as much again (see docs/reliability.md).
struct DecodeBudget {
    std::uint32_t bytesPerFrameByte = 32;
    std::uint64_t bytesPerFrame = 1024 * 1024;

    /// The budget of a frame of `frameSize` bytes.
    constexpr std::uint64_t For(std::uint64_t frameSize) const {
        return bytesPerFrameByte * frameSize + bytesPerFrame;
    }
};

}  // namespace Korvo::Common::Serialization

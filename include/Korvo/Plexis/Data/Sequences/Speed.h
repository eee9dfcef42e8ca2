#pragma once

#include <cstdint>
#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>

namespace Korvo::Plexis::Data::Sequences {

/// A play speed as a fraction: 1/1 is normal speed, 1/2 half speed.
struct Speed {
    std::int32_t numerator = 0;
    std::int32_t denominator = 0;

    auto Fields() const { return std::tie(numerator, denominator); }
    KORVO_COMPARED_BY_FIELDS(Speed)
};

}  // namespace Korvo::Plexis::Data::Sequences

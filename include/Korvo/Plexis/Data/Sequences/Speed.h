#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Data::Sequences {

/// A play speed as a fraction: 1/1 is normal speed, 1/2 half speed.
struct Speed {
    std::int32_t numerator = 0;
    std::int32_t denominator = 0;

    KORVO_FIELDS(Speed, numerator, denominator)
};

}  // namespace Korvo::Plexis::Data::Sequences

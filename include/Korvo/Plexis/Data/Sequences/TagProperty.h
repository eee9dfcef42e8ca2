#pragma once

#include <cstdint>
#include <tuple>
#include <vector>

#include <Korvo/Plexis/Data/ComparedByFields.h>

namespace Korvo::Plexis::Data::Sequences {

/// One property of a tag: a data type and its values.
struct TagProperty {
    std::int32_t dataType = 0;
    std::vector<std::int32_t> value;

    auto Fields() const { return std::tie(dataType, value); }
    KORVO_COMPARED_BY_FIELDS(TagProperty)
};

}  // namespace Korvo::Plexis::Data::Sequences

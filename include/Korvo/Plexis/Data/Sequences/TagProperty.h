#pragma once

#include <cstdint>
#include <vector>

#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Data::Sequences {

/// One property of a tag: a data type and its values.
struct TagProperty {
    std::int32_t dataType = 0;
    std::vector<std::int32_t> value;

    KORVO_FIELDS(TagProperty, dataType, value)
};

}  // namespace Korvo::Plexis::Data::Sequences

#pragma once

#include <cstdint>
#include <map>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Sequences/TagProperty.h>

namespace Korvo::Plexis::Data::Sequences {

/// A tag placed on an element at a field: a command for the playout with its properties.
struct Tag {
    std::int32_t id = 0;
    std::int32_t commandType = 0;
    std::int64_t field = 0;  ///< where the tag sits, in video fields
    std::map<std::int32_t, TagProperty> properties;

    KORVO_FIELDS(Tag, id, commandType, field, properties)
};

}  // namespace Korvo::Plexis::Data::Sequences

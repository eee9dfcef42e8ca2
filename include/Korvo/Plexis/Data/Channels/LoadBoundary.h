#pragma once

#include <cstdint>
#include <optional>

#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Data::Channels {

/// Where a player's loaded material starts or ends: an absolute time point or a distance in
/// video fields. `type` says which, with values the server defines; at most one of the two
/// values is set.
struct LoadBoundary {
    std::int32_t type = 0;
    std::optional<std::int64_t> absoluteTimepoint;   ///< an absolute time point
    std::optional<std::int64_t> relativeFieldCount;  ///< a distance counted in video fields

    static LoadBoundary Absolute(std::int32_t type, std::int64_t timepoint) {
        LoadBoundary boundary;
        boundary.type = type;
        boundary.absoluteTimepoint = timepoint;
        return boundary;
    }
    static LoadBoundary Relative(std::int32_t type, std::int64_t fieldCount) {
        LoadBoundary boundary;
        boundary.type = type;
        boundary.relativeFieldCount = fieldCount;
        return boundary;
    }

    KORVO_FIELDS(LoadBoundary, type, absoluteTimepoint, relativeFieldCount)
};

}  // namespace Korvo::Plexis::Data::Channels

#pragma once

#include <cstdint>
#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>

namespace Korvo::Plexis::Data::Sequences {

/// Identifies a sequence by where it is stored: a location on a server.
struct SequenceId {
    std::int32_t location = 0;
    std::int32_t serverId = 0;

    auto Fields() const { return std::tie(location, serverId); }
    KORVO_COMPARED_BY_FIELDS(SequenceId)
};

}  // namespace Korvo::Plexis::Data::Sequences

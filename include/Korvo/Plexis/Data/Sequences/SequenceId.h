#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Data::Sequences {

/// Identifies a sequence by where it is stored: a location on a server.
struct SequenceId {
    std::int32_t location = 0;
    std::int32_t serverId = 0;

    KORVO_FIELDS(SequenceId, location, serverId)
};

}  // namespace Korvo::Plexis::Data::Sequences

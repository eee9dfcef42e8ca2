#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Data {

/// The outcome of one operation: a pair of codes whose values the server defines. A status not
/// filled from a reply reads (0, 11).
struct OperationStatus {
    std::int32_t code = 0;     ///< the outcome itself (success or the kind of failure)
    std::int32_t reason = 11;  ///< the finer reason behind the outcome

    KORVO_FIELDS(OperationStatus, code, reason)
};

}  // namespace Korvo::Plexis::Data

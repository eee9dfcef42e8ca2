#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Sequences/SequenceId.h>
#include <Korvo/Plexis/Data/Sequences/Speed.h>
#include <Korvo/Plexis/Data/Sequences/Tag.h>

namespace Korvo::Plexis::Data::Sequences {

/// One placed piece of material of a sequence.
struct Element {
    std::int32_t id = 0;
    SequenceId sequenceId;
    std::int32_t position = 0;
    std::string umId;  ///< the material's unique identifier
    std::int32_t inBoundaryType = 0;
    std::int32_t outBoundaryType = 0;
    std::int32_t effectPosition = 0;
    std::int32_t stillMode = 0;
    std::int32_t transitionTimer = 0;
    std::vector<Tag> tags;
    Speed speed;
    std::int32_t internalLoopId = 0;
    std::int32_t internalLoopRunNb = 0;

    KORVO_FIELDS(Element, id, sequenceId, position, umId, inBoundaryType, outBoundaryType,
                 effectPosition, stillMode, transitionTimer, tags, speed, internalLoopId,
                 internalLoopRunNb)
};

}  // namespace Korvo::Plexis::Data::Sequences

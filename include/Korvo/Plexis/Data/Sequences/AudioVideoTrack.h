#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Sequences/AudioVideoElement.h>

namespace Korvo::Plexis::Data::Sequences {

/// The audio-video track of a playlist. Both members are optional on the wire; unset means the
/// sender did not say.
struct AudioVideoTrack {
    std::optional<std::vector<AudioVideoElement>> elements;
    std::optional<std::int32_t> numberOfElements;

    KORVO_FIELDS(AudioVideoTrack, elements, numberOfElements)
};

}  // namespace Korvo::Plexis::Data::Sequences

#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Sequences/Element.h>

namespace Korvo::Plexis::Data::Sequences {

/// An element with its separate video and audio effects and field ranges.
struct AudioVideoElement {
    std::int32_t videoEffectType = 0;
    std::int32_t audioEffectType = 0;
    std::int32_t videoEffectDuration = 0;
    std::int32_t audioEffectDuration = 0;
    std::int64_t videoFieldIn = 0;
    std::int64_t videoFieldOut = 0;
    std::int64_t audioFieldIn = 0;
    std::int64_t audioFieldOut = 0;
    Element element;

    KORVO_FIELDS(AudioVideoElement, videoEffectType, audioEffectType, videoEffectDuration,
                 audioEffectDuration, videoFieldIn, videoFieldOut, audioFieldIn, audioFieldOut,
                 element)
};

}  // namespace Korvo::Plexis::Data::Sequences

// A clip travels only inside other records, so the library instantiates no converter for a clip
// alone; the serialization benchmark measures one, with the library's own field mapping.

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Clips_types.h>

#include "converters/RecordConverterImpl.h"

namespace Korvo::Plexis::Tessel::Serialization::Thrift {
KORVO_INSTANTIATE_CONVERTERS(::Korvo::Plexis::Data::Clips::Clip, Data::Clips::Generated::Clip,
                             "Clip")
}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift

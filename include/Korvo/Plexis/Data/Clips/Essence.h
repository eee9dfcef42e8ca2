#pragma once

#include <cstdint>

#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Data::Clips {

/// One encoded rendition of a clip's media (intra, long-GOP or low resolution). The values of the
/// type, status and compression fields are the server's.
struct Essence {
    std::int32_t type = 0;
    std::int32_t recordingStatus = 0;
    std::int32_t archiveStatus = 0;
    std::int32_t metadata = 0;
    std::int32_t blockSize = 0;
    std::int32_t videoCompressionType = 0;
    std::int32_t audioCompressionType = 0;
    std::int32_t videoCompressionInfo = 0;
    std::int32_t audioConfiguration = 0;
    std::int32_t videoCompressionRate = 0;
    std::int32_t audioCompressionRate = 0;
    std::int32_t horizontalFrameSize = 0;
    std::int32_t verticalFrameSize = 0;

    KORVO_FIELDS(Essence, type, recordingStatus, archiveStatus, metadata, blockSize,
                 videoCompressionType, audioCompressionType, videoCompressionInfo,
                 audioConfiguration, videoCompressionRate, audioCompressionRate,
                 horizontalFrameSize, verticalFrameSize)
};

}  // namespace Korvo::Plexis::Data::Clips

#include <Korvo/Common/Serialization/DeserializerImpl.h>

#include <climits>

namespace Korvo::Common::Serialization::Detail {

apache::thrift::TConfiguration FrameLimits(unsigned int size) {
    // A record can never be longer than the frame it arrived in, nor nest deeper than the
    // deepest record of the protocol.
    const int limit = size > static_cast<unsigned int>(INT_MAX) ? INT_MAX : static_cast<int>(size);
    return apache::thrift::TConfiguration(limit, limit, kDeepestRecordNesting);
}

std::shared_ptr<apache::thrift::TConfiguration> FrameConfiguration(unsigned int size) {
    return std::make_shared<apache::thrift::TConfiguration>(FrameLimits(size));
}

}  // namespace Korvo::Common::Serialization::Detail

#include <Korvo/Common/Serialization/DeserializerImpl.h>

#include <climits>

namespace Korvo::Common::Serialization::Detail {

std::shared_ptr<apache::thrift::TConfiguration> FrameConfiguration(unsigned int size) {
    // A record can never be longer than the frame it arrived in, so no string or container may
    // claim more bytes than that. The recursion limit stays Thrift's default (64), deeper than
    // any record of the protocol nests.
    const int limit = size > static_cast<unsigned int>(INT_MAX) ? INT_MAX : static_cast<int>(size);
    const int depth = apache::thrift::TConfiguration::DEFAULT_RECURSION_DEPTH;
    return std::make_shared<apache::thrift::TConfiguration>(limit, limit, depth);
}

}  // namespace Korvo::Common::Serialization::Detail

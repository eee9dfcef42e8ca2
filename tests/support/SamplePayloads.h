#pragma once

// The bytes a server sends for a filled value of every reply and notification type, encoded with
// the encoding converters from the sample values of Samples.h.

#include <string>
#include <vector>

namespace Korvo::Testing {

struct SamplePayload {
    std::string name;   ///< the reply type name or notification header it travels with
    std::string bytes;  ///< the encoded record
};

/// One payload per reply type name the reply builders accept ("[part]"-prefixed ones included).
std::vector<SamplePayload> SampleReplyPayloads();

/// One payload per notification header.
std::vector<SamplePayload> SampleNotificationPayloads();

}  // namespace Korvo::Testing

#pragma once

// Hand-made reply payloads that attack the decoder: sizes that ask for gigabytes, sizes that
// overflow, malformed varints and types, deep nesting. Each is announced with a reply type name
// the channel reply builder knows. Used by the regression tests and as seeds of the fuzzers.

#include <string>
#include <vector>

namespace Korvo::Testing {

struct HostileFrame {
    const char* name;       ///< what the bytes try
    const char* replyType;  ///< the reply type name they are announced with
    std::string bytes;
};

inline std::vector<HostileFrame> HostileFrames() {
    using namespace std::string_literals;
    // Field headers: 0x18 field 1 binary, 0x1C field 1 struct, 0x29 field 2 list, 0x2B field 2
    // map. A list header 0xFn announces a varint size (n: the element type) after it.
    return {
        {"a string claiming 2^31-1 bytes", "UnknownCommand", "\x18\xFF\xFF\xFF\xFF\x07"s},
        {"a list claiming 2^31-1 structs", "ChannelCommandReply", "\x29\xFC\xFF\xFF\xFF\xFF\x07"s},
        {"a list claiming 2^29 doubles (2^32 bytes, 0 in 32 bits)", "ChannelCommandReply",
         "\x29\xF7\x80\x80\x80\x80\x02"s},
        {"a map claiming 2^28 double pairs (2^32 bytes, 0 in 32 bits)", "GetChannelsCommandReply",
         "\x2B\x80\x80\x80\x80\x01\x77"s},
        {"a negative string length", "UnknownCommand", "\x18\xFF\xFF\xFF\xFF\x0F"s},
        // Sizes whose low 32 bits are small: cut to 32 bits they read as a valid frame.
        {"a list size of 2^32", "ChannelCommandReply", "\x29\xFC\x80\x80\x80\x80\x10\x00"s},
        {"a list size of 2^63", "ChannelCommandReply",
         "\x29\xFC\x80\x80\x80\x80\x80\x80\x80\x80\x80\x01\x00"s},
        {"a map size of 2^32", "GetChannelsCommandReply", "\x2B\x80\x80\x80\x80\x10\x00"s},
        {"a string length of 2^32+1", "UnknownCommand", "\x18\x81\x80\x80\x80\x10x\x00"s},
        {"a negative list size", "ChannelCommandReply", "\x29\xFC\x80\x80\x80\x80\x08"s},
        {"an 11-byte varint", "UnknownCommand",
         "\x18\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x01"s},
        {"an unknown field type", "SuccessReply", "\x1D\x00"s},
        {"an unknown list element type", "ChannelCommandReply", "\x29\x1D\x00\x00"s},
        {"an unknown map key type", "GetChannelsCommandReply", "\x2B\x01\xDC\x00\x00"s},
        {"100,000 nested structs", "SuccessReply", std::string(100000, '\x1C')},
        {"no bytes at all", "GetMultiviewerDataCommandReply", ""s},
    };
}

}  // namespace Korvo::Testing

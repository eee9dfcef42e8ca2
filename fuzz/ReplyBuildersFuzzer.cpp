// Replies as a server could send them, crafted or corrupt, through both reply builders. Either
// builder must return a reply or throw std::invalid_argument (unknown name, unparsable bytes, a
// conversion refused); anything else, a crash or an oversized allocation is a fault.

#include <cstdint>
#include <cstdlib>
#include <stdexcept>

#include <Korvo/Common/Serialization/PointerBuffer.h>
#include <Korvo/Plexis/Tessel/Client/ChannelCommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandReplyBuilder.h>

#include "FuzzInputs.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Korvo::Plexis::Tessel::Client;
    if (size == 0) {
        return 0;
    }
    const auto& names = Korvo::Fuzzing::ReplyTypeNames();
    const std::string& name = names[Korvo::Fuzzing::Choice(data[0], names.size())];
    // The payload ends where the input does, so a read past it is caught.
    const Korvo::Common::Serialization::PointerBuffer payload(const_cast<unsigned char*>(data + 1),
                                                              static_cast<unsigned int>(size - 1));

    ChannelCommandReplyBuilder channel;
    DataCommandReplyBuilder dataBuilder;
    for (CommandReplyBuilder* builder : {static_cast<CommandReplyBuilder*>(&channel),
                                         static_cast<CommandReplyBuilder*>(&dataBuilder)}) {
        try {
            if (builder->BuildCommandReply(name, payload) == nullptr) {
                std::abort();
            }
        } catch (const std::invalid_argument&) {
        }
    }
    return 0;
}

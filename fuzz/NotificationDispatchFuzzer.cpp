// Notifications as a server could publish them, crafted or corrupt, through the dispatch the
// notification client's thread runs: recognise the header, decode, convert, call the lists. A
// payload may only fail as unparsable or unconvertible; a known header must be recognised.

#include <cstdint>
#include <cstdlib>
#include <string>

#include <Korvo/Common/Messaging/Message.h>
#include <Korvo/Common/Serialization/InvalidConversionException.h>
#include <Korvo/Common/Serialization/InvalidFormatException.h>

#include "FuzzInputs.h"
#include "client/NotificationDispatch.h"

namespace {

using namespace Korvo::Plexis::Tessel::Client;

// Every family list has a callback, so every decoded notification is delivered.
NotificationHandlers MakeHandlers() {
    NotificationHandlers handlers;
    handlers.clipCommandHandlers.push_back([](auto, const auto&) {});
    handlers.clipStatusHandlers.push_back([](auto, const auto&) {});
    handlers.channelStatusHandlers.push_back([](auto, const auto&) {});
    handlers.serverStatusHandlers.push_back([](auto, const auto&) {});
    return handlers;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const NotificationHandlers handlers = MakeHandlers();
    static const Detail::NotificationDispatch dispatch;
    if (size == 0) {
        return 0;
    }
    const auto& headers = Korvo::Fuzzing::NotificationHeaders();
    const std::size_t choice = Korvo::Fuzzing::Choice(data[0], headers.size());
    const Korvo::Common::Messaging::Message message(
        Korvo::Common::Messaging::Origin(0), headers[choice],
        std::string(reinterpret_cast<const char*>(data + 1), size - 1));
    const bool known = choice < headers.size() - 2;
    try {
        if (dispatch(handlers, message) != known) {
            std::abort();
        }
    } catch (const Korvo::Common::Serialization::InvalidFormatException&) {
    } catch (const Korvo::Common::Serialization::InvalidConversionException&) {
    }
    return 0;
}

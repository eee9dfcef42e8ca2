#include <Korvo/Plexis/Tessel/Client/ChannelsCommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandParamsPayloadBuilder.h>

#include <cxxabi.h>

#include <cstdlib>
#include <typeinfo>

#include "client/BuilderTables.h"

namespace Korvo::Plexis::Tessel::Client {
namespace {

namespace Domain = HighLevelOperations::Commands;

constexpr auto kChannelCommands = Tables::PayloadRows<CommandFamily::Channel>();
constexpr auto kDataCommands = Tables::PayloadRows<CommandFamily::Data>();

}  // namespace

std::string Tables::ClassNameOf(const CommandParams& params) {
    const std::type_info& type = typeid(params);
    std::string name;
    ForEachCommand([&](auto* candidate) {
        using Params = std::remove_pointer_t<decltype(candidate)>;
        if (type == typeid(Params)) {
            name = CommandTraits<Params>::kClassName;
        }
    });
    if (!name.empty()) {
        return name;
    }
    int status = 0;
    char* demangled = abi::__cxa_demangle(type.name(), nullptr, nullptr, &status);
    name = status == 0 && demangled != nullptr ? demangled : type.name();
    std::free(demangled);
    return name;
}

std::unique_ptr<Common::Serialization::Buffer> ChannelsCommandParamsPayloadBuilder::BuildPayload(
    const std::string& commandName, const Domain::CommandParams& params) {
    return Tables::BuildPayload(kChannelCommands, commandName, params);
}

std::unique_ptr<Common::Serialization::Buffer> DataCommandParamsPayloadBuilder::BuildPayload(
    const std::string& commandName, const Domain::CommandParams& params) {
    return Tables::BuildPayload(kDataCommands, commandName, params);
}

}  // namespace Korvo::Plexis::Tessel::Client

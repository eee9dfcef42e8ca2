#include "Templates.h"

#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

#include <nlohmann/json.hpp>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/Channels/LoadBoundary.h>
#include <Korvo/Plexis/Data/Clips/AsciiOrUtf16String.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/Client/CommandTypes.h>
#include <Korvo/Plexis/Tessel/Json/CommandParamsJson.h>

#include "Errors.h"
#include "Output.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Commands = HighLevelOperations::Commands;

namespace {

template <class T>
struct Container : std::false_type {};
template <class T, class A>
struct Container<std::vector<T, A>> : std::true_type {};
template <class T, class C, class A>
struct Container<std::set<T, C, A>> : std::true_type {};
template <class T>
struct Map : std::false_type {};
template <class K, class V, class C, class A>
struct Map<std::map<K, V, C, A>> : std::true_type {};
template <class T>
struct Optional : std::false_type {};
template <class T>
struct Optional<std::optional<T>> : std::true_type {};

template <class T, class = void>
struct Listed : std::false_type {};
template <class T>
struct Listed<T, std::void_t<decltype(std::declval<const T&>().Fields())>> : std::true_type {};

// Gives every member of `value` a value of its type, recursively: numbers 0, flags false, texts
// empty, channels `channel`, optionals set and containers with one element.
template <class T>
void Fill(T& value, const Data::Channels::Guid& channel) {
    if constexpr (std::is_same_v<T, Data::Channels::Guid>) {
        value = channel;
    } else if constexpr (std::is_same_v<T, Data::Channels::LoadBoundary>) {
        value = T{};  // either absolute or relative, never both: shown as none, its type only
    } else if constexpr (std::is_arithmetic_v<T> || std::is_same_v<T, std::string> ||
                         std::is_base_of_v<Data::Guid, T> ||
                         std::is_same_v<T, Data::Clips::AsciiOrUtf16String>) {
        value = T{};
    } else if constexpr (Optional<T>::value) {
        Fill(value.emplace(), channel);
    } else if constexpr (Map<T>::value) {
        typename T::key_type key{};
        typename T::mapped_type mapped{};
        Fill(key, channel);
        Fill(mapped, channel);
        value.emplace(std::move(key), std::move(mapped));
    } else if constexpr (Container<T>::value) {
        typename T::value_type element{};
        Fill(element, channel);
        value.insert(value.end(), std::move(element));
    } else if constexpr (Listed<T>::value) {
        // The members belong to `value`, which is not const: writing through them is sound.
        std::apply(
            [&](const auto&... member) {
                (Fill(const_cast<std::decay_t<decltype(member)>&>(member), channel), ...);
            },
            value.Fields());
    }
    // Anything else (a time code kept on this side only) keeps its default.
}

}  // namespace

std::string CommandTemplate(const std::string& commandName) {
    std::string text;
    Client::ForEachCommand([&](auto* type) {
        using Params = std::remove_pointer_t<decltype(type)>;
        if (!text.empty() || Client::CommandTraits<Params>::kName != commandName) {
            return;
        }
        constexpr bool kRecording = std::is_same_v<Params, Commands::StartCommandParams> ||
                                    std::is_same_v<Params, Commands::StopCommandParams>;
        Params params;
        Fill(params, kRecording ? Data::Channels::Guid::RecorderOf(1, 4)
                                : Data::Channels::Guid::PlayerOf(1, 0));
        text = Json::CommandParamsToJson(params, 2);
    });
    if (text.empty()) {
        throw CliError(ExitCode::Usage,
                       "unknown command \"" + commandName + "\" (see tessel call --list)");
    }
    return text;
}

void ListCommands(std::ostream& out, bool json) {
    Table table(out, {"COMMAND", "FAMILY", "REPLIES"}, "");
    Client::ForEachCommand([&](auto* type) {
        using Traits = Client::CommandTraits<std::remove_pointer_t<decltype(type)>>;
        std::vector<std::string> replies;
        std::apply(
            [&](auto... reply) {
                (replies.emplace_back(Client::ReplyTraits<decltype(reply)>::kName), ...);
            },
            typename Traits::Replies{});
        const char* family = Traits::kFamily == Client::CommandFamily::Channel ? "channel" : "data";
        if (json) {
            out << nlohmann::json{{"command", Traits::kName},
                                  {"family", family},
                                  {"replies", replies}}
                       .dump()
                << '\n';
            return;
        }
        std::string joined;
        for (const auto& reply : replies) {
            joined += (joined.empty() ? "" : ", ") + reply;
        }
        table.AddRow({std::string(Traits::kName), family, joined});
    });
    if (!json) {
        table.Finish();
    }
}

}  // namespace Korvo::Plexis::Tessel::Cli

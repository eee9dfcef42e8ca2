#pragma once

// The commands and replies of the protocol keyed by type: traits derived from the rows of
// `MessageTables.h`, which every view of them (the payload and reply builders, the JSON form, the
// simulator's dispatch, the command-line tool, the typed calls of `Connection`) expands. Adding a
// command is one row there, its parameters class, its wire record and a simulator handler.

#include <cstdint>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>

#include <Korvo/Plexis/Tessel/MessageTables.h>

namespace Korvo::Plexis::Tessel::Client {

/// Which payload and reply builder serve a command: the channel pair or the data pair.
enum class CommandFamily : std::uint8_t { Channel, Data };

/// The families that receive a reply class.
enum class ReplyFamilies : std::uint8_t { Channel, Data, Both };

/// What the tables say of a command's parameters class `Params`; defined for the 30 parameters
/// classes only, so that naming any other class fails to compile:
/// - `kName`: the command name sent on the wire ("PlayCommand");
/// - `kClassName`: the parameters class's own name ("PlayCommandParams");
/// - `kFamily`: the builders that serve it;
/// - `Reply`: the reply class it answers with when it runs;
/// - `Replies`: every reply class it may receive (`Reply`, then the success, failure and
///   unknown-command replies that any command may receive), as a `std::tuple` of types;
/// - `kReadOnly`: true when it only reads, so sending it again after an unknown outcome is safe.
template <class Params>
struct CommandTraits;

/// What the tables say of a reply class `Reply`: `kName` (the reply type name), `kClassName`,
/// `kAcceptsPart` (it may come in "[part]" messages) and `kFamilies`. Defined for the 14 reply
/// classes only.
template <class Reply>
struct ReplyTraits;

/// True when `T` is one of the command parameters classes of the tables.
template <class T, class = void>
struct IsCommand : std::false_type {};
template <class T>
struct IsCommand<T, std::void_t<decltype(CommandTraits<T>::kName)>> : std::true_type {};
template <class T>
inline constexpr bool kIsCommand = IsCommand<T>::value;

namespace Detail {

/// "PlayCommandParams" names the record of "PlayCommand".
constexpr std::string_view CommandNameOfRecord(std::string_view record) {
    return record.substr(0, record.size() - std::string_view("Params").size());
}

template <class T, class... List>
inline constexpr bool kOneOf = (std::is_same_v<T, List> || ...);

/// `Reply` followed by the replies any command may receive, without repeating `Reply`.
template <class Reply, class... Common>
using WithCommon = decltype(std::tuple_cat(
    std::tuple<Reply>{},
    std::conditional_t<std::is_same_v<Reply, Common>, std::tuple<>, std::tuple<Common>>{}...));

}  // namespace Detail

#define KORVO_TESSEL_COMMAND_TRAITS(Params, Record, Family, ReplyClass, ReadOnly)             \
    template <>                                                                               \
    struct CommandTraits<HighLevelOperations::Commands::Params> {                             \
        static constexpr std::string_view kName = Detail::CommandNameOfRecord(#Record);       \
        static constexpr std::string_view kClassName = #Params;                               \
        static constexpr CommandFamily kFamily = CommandFamily::Family;                       \
        using Reply = HighLevelOperations::Commands::ReplyClass;                              \
        using Replies = Detail::WithCommon<Reply, HighLevelOperations::Commands::SuccessReply, \
                                           HighLevelOperations::Commands::FailureReply,       \
                                           HighLevelOperations::Commands::UnknownCommandReply>; \
        static constexpr bool kReadOnly = ReadOnly;                                           \
    };
KORVO_TESSEL_COMMANDS(KORVO_TESSEL_COMMAND_TRAITS)
#undef KORVO_TESSEL_COMMAND_TRAITS

#define KORVO_TESSEL_REPLY_TRAITS(ReplyClass, Name, AcceptsPart, Families) \
    template <>                                                            \
    struct ReplyTraits<HighLevelOperations::Commands::ReplyClass> {        \
        static constexpr std::string_view kName = Name;                    \
        static constexpr std::string_view kClassName = #ReplyClass;        \
        static constexpr bool kAcceptsPart = AcceptsPart;                  \
        static constexpr ReplyFamilies kFamilies = ReplyFamilies::Families; \
    };
KORVO_TESSEL_REPLIES(KORVO_TESSEL_REPLY_TRAITS)
#undef KORVO_TESSEL_REPLY_TRAITS

/// Calls `visit(static_cast<Params*>(nullptr))` for every command, in table order; for lookups
/// by name or by dynamic type without repeating the list.
template <class Visit>
constexpr void ForEachCommand(Visit&& visit) {
#define KORVO_TESSEL_VISIT_COMMAND(Params, Record, Family, ReplyClass, ReadOnly) \
    visit(static_cast<HighLevelOperations::Commands::Params*>(nullptr));
    KORVO_TESSEL_COMMANDS(KORVO_TESSEL_VISIT_COMMAND)
#undef KORVO_TESSEL_VISIT_COMMAND
}

/// Calls `visit(static_cast<Reply*>(nullptr))` for every reply class, in table order.
template <class Visit>
constexpr void ForEachReply(Visit&& visit) {
#define KORVO_TESSEL_VISIT_REPLY(ReplyClass, Name, AcceptsPart, Families) \
    visit(static_cast<HighLevelOperations::Commands::ReplyClass*>(nullptr));
    KORVO_TESSEL_REPLIES(KORVO_TESSEL_VISIT_REPLY)
#undef KORVO_TESSEL_VISIT_REPLY
}

/// True when the builders of `family` receive replies of `families`.
constexpr bool Receives(CommandFamily family, ReplyFamilies families) {
    return families == ReplyFamilies::Both ||
           (family == CommandFamily::Channel) == (families == ReplyFamilies::Channel);
}

/// The family of the command named `name` (compared exactly), or none when no command has it.
constexpr std::optional<CommandFamily> FamilyOfCommand(std::string_view name) {
    bool found = false;
    CommandFamily family = CommandFamily::Channel;
    ForEachCommand([&](auto* params) {
        using Traits = CommandTraits<std::remove_pointer_t<decltype(params)>>;
        if (Traits::kName == name) {
            found = true;
            family = Traits::kFamily;
        }
    });
    return found ? std::optional<CommandFamily>(family) : std::nullopt;
}

}  // namespace Korvo::Plexis::Tessel::Client

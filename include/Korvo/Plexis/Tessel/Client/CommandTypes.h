#pragma once

// The commands and replies of the protocol as tables keyed by type. Every view of them (the
// payload and reply builders, the JSON form, the simulator's dispatch, the command-line tool,
// the typed calls of `Connection`) is derived from the rows below, so adding a command is one row
// here, its parameters class, its wire record and a simulator handler.

#include <cstdint>
#include <string_view>
#include <tuple>
#include <type_traits>

#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/AnglesGroupCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ChainCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ChannelCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ClipCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CreateAnglesGroupCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CreateClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CreatePlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/DeleteAnglesGroupCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/DeleteClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/DeletePlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/DialCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/FailureReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetAnglesGroupsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetAnglesGroupsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetChannelsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetChannelsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetMultiviewerDataCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetMultiviewerDataCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetServersCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetServersCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetTrainsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetTrainsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GoIdleCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LiveCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/LoadSequencesCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PingCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PlayCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PlaylistCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SetLoadBoundariesCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SetMultiviewerDataCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StartCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StepCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/StopCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SuccessReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SyncCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UnknownCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdateAnglesGroupCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdateClipsCommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UpdatePlaylistsCommandParams.h>

// clang-format off
/// One row per command, channel commands first, each family in its payload builder's order:
/// the parameters class, its wire record (the command's name is the record's name without
/// "Params"), the family, the reply it answers with when it runs, and whether it only reads (a
/// command that only reads is safe to send again after an unknown outcome).
#define KORVO_TESSEL_COMMANDS(X) \
    X(PlayCommandParams, PlayCommandParams, Channel, ChannelCommandReply, false) \
    X(LiveCommandParams, LiveCommandParams, Channel, ChannelCommandReply, false) \
    X(ChainCommandParams, ChainCommandParams, Channel, ChannelCommandReply, false) \
    X(DialCommandParams, DialCommandParams, Channel, ChannelCommandReply, false) \
    X(StepCommandParams, StepCommandParams, Channel, ChannelCommandReply, false) \
    X(SyncCommandParams, SyncCommandParams, Channel, ChannelCommandReply, false) \
    X(LoadClipsCommandParams, LoadClipsCommandParams, Channel, ChannelCommandReply, false) \
    X(LoadSequencesCommandParams, LoadSequencesCommandParams, Channel, ChannelCommandReply, false) \
    X(SetLoadBoundariesCommandParams, SetLoadBoundariesCommandParams, Channel, ChannelCommandReply, false) \
    X(GoIdleCommandParams, GoIdleCommandParams, Channel, ChannelCommandReply, false) \
    X(StartCommandParams, StartRecordingCommandParams, Channel, ChannelCommandReply, false) \
    X(StopCommandParams, StopRecordingCommandParams, Channel, ChannelCommandReply, false) \
    X(GetChannelsCommandParams, GetChannelsCommandParams, Channel, GetChannelsCommandReply, true) \
    X(GetMultiviewerDataCommandParams, GetMultiviewerDataCommandParams, Channel, GetMultiviewerDataCommandReply, true) \
    X(SetMultiviewerDataCommandParams, SetMultiviewerDataCommandParams, Channel, ChannelCommandReply, false) \
    X(GetClipsCommandParams, GetClipsCommandParams, Data, GetClipsCommandReply, true) \
    X(GetTrainsCommandParams, GetTrainsCommandParams, Data, GetTrainsCommandReply, true) \
    X(GetServersCommandParams, GetServersCommandParams, Data, GetServersCommandReply, true) \
    X(GetPlaylistsCommandParams, GetPlaylistsCommandParams, Data, GetPlaylistsCommandReply, true) \
    X(DeleteClipsCommandParams, DeleteClipsCommandParams, Data, ClipCommandReply, false) \
    X(CreateClipsCommandParams, CreateClipsCommandParams, Data, ClipCommandReply, false) \
    X(UpdateClipsCommandParams, UpdateClipsCommandParams, Data, ClipCommandReply, false) \
    X(PingCommandParams, PingCommandParams, Data, SuccessReply, true) \
    X(GetAnglesGroupsCommandParams, GetAnglesGroupsCommandParams, Data, GetAnglesGroupsCommandReply, true) \
    X(DeleteAnglesGroupCommandParams, DeleteAnglesGroupCommandParams, Data, AnglesGroupCommandReply, false) \
    X(UpdateAnglesGroupCommandParams, UpdateAnglesGroupCommandParams, Data, AnglesGroupCommandReply, false) \
    X(CreateAnglesGroupCommandParams, CreateAnglesGroupCommandParams, Data, AnglesGroupCommandReply, false) \
    X(CreatePlaylistsCommandParams, CreatePlaylistsCommandParams, Data, PlaylistCommandReply, false) \
    X(DeletePlaylistsCommandParams, DeletePlaylistsCommandParams, Data, PlaylistCommandReply, false) \
    X(UpdatePlaylistsCommandParams, UpdatePlaylistsCommandParams, Data, PlaylistCommandReply, false)

/// One row per reply class: the class (its wire record has the same name), the reply type name
/// announcing it, whether it may come in "[part]" messages, and the families that receive it.
/// Within a family, the rows keep the order in which that family's reply builder compares names.
#define KORVO_TESSEL_REPLIES(X) \
    X(SuccessReply, "SuccessReply", false, Both) \
    X(FailureReply, "FailureReply", false, Both) \
    X(UnknownCommandReply, "UnknownCommand", false, Both) \
    X(ChannelCommandReply, "ChannelCommandReply", true, Channel) \
    X(GetChannelsCommandReply, "GetChannelsCommandReply", false, Channel) \
    X(GetMultiviewerDataCommandReply, "GetMultiviewerDataCommandReply", false, Channel) \
    X(ClipCommandReply, "ClipCommandReply", true, Data) \
    X(PlaylistCommandReply, "PlaylistCommandReply", true, Data) \
    X(GetClipsCommandReply, "GetClipsCommandReply", true, Data) \
    X(GetTrainsCommandReply, "GetTrainsCommandReply", false, Data) \
    X(GetPlaylistsCommandReply, "GetPlaylistsCommandReply", false, Data) \
    X(GetServersCommandReply, "GetServersCommandReply", false, Data) \
    X(GetAnglesGroupsCommandReply, "GetAnglesGroupsCommandReply", true, Data) \
    X(AnglesGroupCommandReply, "AnglesGroupCommandReply", true, Data)
// clang-format on

namespace Korvo::Plexis::Tessel::Client {

/// Which payload and reply builder serve a command: the channel pair or the data pair.
enum class CommandFamily : std::uint8_t { Channel, Data };

/// The families that receive a reply class.
enum class ReplyFamilies : std::uint8_t { Channel, Data, Both };

/// What the tables say of a command's parameters class `Params`; defined for the 30 parameters
/// classes only, so that naming any other class fails to compile:
/// - `kName`: the command name sent on the wire ("PlayCommand");
/// - `kFamily`: the builders that serve it;
/// - `Reply`: the reply class it answers with when it runs;
/// - `Replies`: every reply class it may receive (`Reply`, then the success, failure and
///   unknown-command replies that any command may receive), as a `std::tuple` of types;
/// - `kReadOnly`: true when it only reads, so sending it again after an unknown outcome is safe.
template <class Params>
struct CommandTraits;

/// What the tables say of a reply class `Reply`: `kName` (the reply type name), `kAcceptsPart`
/// (it may come in "[part]" messages) and `kFamilies`. Defined for the 14 reply classes only.
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

}  // namespace Korvo::Plexis::Tessel::Client

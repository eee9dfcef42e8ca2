#pragma once

// Names for the integers the server uses in its states and outcomes, and names as UTF-8 text.
// Each value set is one table; a value outside it keeps its number and reads "Unknown(<n>)".

#include <cstdint>
#include <string>

#include <Korvo/Plexis/Data/Channels/PlayerState.h>
#include <Korvo/Plexis/Data/Channels/RecorderState.h>
#include <Korvo/Plexis/Data/Clips/AsciiOrUtf16String.h>
#include <Korvo/Plexis/Data/OperationStatus.h>
#include <Korvo/Plexis/Data/Servers/ServerInfo.h>

// clang-format off
/// What a player is doing (`PlayerState::playMode`).
#define KORVO_PLAY_MODES(X) X(Idle, 0) X(Cued, 1) X(Playing, 2) X(Live, 3) X(Dialing, 4)
/// What a player has loaded (`PlayerState::loadedMaterialType`).
#define KORVO_MATERIAL_TYPES(X) X(Nothing, 0) X(Clip, 1) X(Sequence, 2) X(LiveFeed, 3)
/// Whether a server is reachable (`ServerInfo::status`).
#define KORVO_SERVER_STATUSES(X) X(Offline, 0) X(Online, 1)
/// The outcome of one operation (`OperationStatus`, a pair of code and reason).
#define KORVO_OUTCOME_STATUSES(X)            \
    X(Done, 0, 0)                            \
    X(NoSuchChannel, 1, 1)                   \
    X(WrongChannelKind, 1, 2)                \
    X(NothingLoaded, 1, 3)                   \
    X(NoSuchItem, 1, 4)                      \
    X(AlreadyRecording, 1, 5)                \
    X(NotRecording, 1, 6)                    \
    X(InvalidValue, 1, 7)                    \
    X(ServerOffline, 1, 8)                   \
    X(AlreadyExists, 1, 9)                   \
    X(InUse, 1, 10)                          \
    X(NotFilled, 0, 11)
// clang-format on

namespace Korvo::Plexis::Data {

#define KORVO_ENUMERATOR(Name, Value) Name = Value,
enum class PlayMode : std::int32_t { KORVO_PLAY_MODES(KORVO_ENUMERATOR) };
enum class MaterialType : std::int32_t { KORVO_MATERIAL_TYPES(KORVO_ENUMERATOR) };
enum class ServerStatus : std::int32_t { KORVO_SERVER_STATUSES(KORVO_ENUMERATOR) };
#undef KORVO_ENUMERATOR

/// An `OperationStatus` by name; `Other` for a pair outside the table.
enum class OutcomeStatus : std::uint8_t {
#define KORVO_OUTCOME_ENUMERATOR(Name, Code, Reason) Name,
    KORVO_OUTCOME_STATUSES(KORVO_OUTCOME_ENUMERATOR)
#undef KORVO_OUTCOME_ENUMERATOR
        Other
};

/// What a recorder is doing, from `RecorderState::isRecording`.
enum class RecorderActivity : std::uint8_t { Idle, Recording };

inline PlayMode PlayModeOf(const Channels::PlayerState& state) {
    return static_cast<PlayMode>(state.playMode);
}
inline MaterialType MaterialTypeOf(const Channels::PlayerState& state) {
    return static_cast<MaterialType>(state.loadedMaterialType);
}
inline ServerStatus ServerStatusOf(const Servers::ServerInfo& server) {
    return static_cast<ServerStatus>(server.status);
}
inline RecorderActivity ActivityOf(const Channels::RecorderState& state) {
    return state.isRecording ? RecorderActivity::Recording : RecorderActivity::Idle;
}
OutcomeStatus OutcomeStatusOf(const OperationStatus& status);

/// "Playing", "Clip", "Online", "Recording", "NothingLoaded"...; a value outside its table reads
/// "Unknown(<number>)" ("Other(<code>, <reason>)" needs the pair: use the overload below).
std::string ToString(PlayMode mode);
std::string ToString(MaterialType type);
std::string ToString(ServerStatus status);
std::string ToString(RecorderActivity activity);
std::string ToString(OutcomeStatus status);
/// The name of the pair, or "Other(<code>, <reason>)".
std::string ToString(const OperationStatus& status);

/// The text as UTF-8, whichever encoding the wire carried: big-endian UTF-16 code units are
/// converted (a lone surrogate or an odd last byte becomes U+FFFD); 8-bit text is kept when it
/// is valid UTF-8 (plain ASCII is), and otherwise read as Latin-1.
std::string ToUtf8(const Clips::AsciiOrUtf16String& text);

}  // namespace Korvo::Plexis::Data

#pragma once

// Small texts the tool shows: modes, speeds, durations, optional values, names; and the reading
// of channel arguments.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/Channels/PlayerState.h>
#include <Korvo/Plexis/Data/Clips/AsciiOrUtf16String.h>

namespace Korvo::Plexis::Tessel::Cli {

/// "idle", "cued", "playing", "live", "dialing", or the number for another mode.
std::string PlayModeText(std::int32_t playMode);

/// What a player has loaded: the clip's name, "playlist <umId>", "live <recorder>" or "-".
std::string LoadedText(const Data::Channels::PlayerState& state);

/// "1/1", "0" for a pause, "-" when the denominator is 0.
std::string SpeedText(std::int32_t numerator, std::int32_t denominator);

/// A count of video fields as seconds at 50 fields a second: "12.0 s".
std::string FieldsText(std::int64_t fields);

/// The text, or "-" when it is empty.
std::string Dash(const std::string& text);

/// The value, or "-" when unset; booleans as "yes" / "no".
std::string OptionalText(const std::optional<std::string>& value);
std::string OptionalText(const std::optional<std::int32_t>& value);
std::string OptionalText(const std::optional<std::int64_t>& value);
std::string OptionalText(const std::optional<bool>& value);

/// The text without its trailing blanks (identifiers are blank-filled to a fixed width).
std::string Trimmed(const std::string& text);

/// The text in UTF-8, converted from UTF-16 when it is stored so.
std::string TextOf(const Data::Clips::AsciiOrUtf16String& text);

/// The keywords, separated by commas.
std::string KeywordsText(const std::vector<Data::Clips::AsciiOrUtf16String>& keywords);

/// The numbers, separated by commas; "-" for none.
std::string JoinNumbers(const std::vector<std::int32_t>& numbers);

/// The text made safe to show on a terminal: control characters (C0, DEL and C1, which start
/// terminal escape sequences), a backslash and bytes that are not UTF-8 are written as "\xNN"
/// ("\\" for a backslash), so that nothing received from the network reaches the terminal raw.
std::string Printable(const std::string& text);

/// The columns a UTF-8 text takes on a terminal (its code points).
std::size_t DisplayWidth(const std::string& text);

/// The channel named by `text`: the full form ("player:1:0", "recorder:1:4") or, for a channel of
/// kind `kind`, the short form "<server>:<channel>" ("1:0"). Throws `CliError` (Usage) otherwise.
Data::Channels::Guid ParseChannel(const std::string& text, Data::Channels::Guid::Type kind);

}  // namespace Korvo::Plexis::Tessel::Cli

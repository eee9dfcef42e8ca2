#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Korvo::Plexis::Data::Channels {

/// The identifier of a playout channel: a player or a recorder of one server.
///
/// On the wire a channel travels as an identifier text, "player:<server>:<channel>" or
/// "recorder:<server>:<channel>" in decimal (for example "player:1:0"); the undefined channel is
/// the empty text. A server may spell its identifiers otherwise: a text received that is not
/// exactly in that form (a UUID, or "player:01:0" with a leading zero) is kept as an opaque
/// identifier (`Opaque`) that compares by its text and goes back to the wire unchanged, so that
/// no two texts received ever become one identifier. An opaque text is held inside the object
/// (at most `kMaxTextLength` bytes), so that the class stays trivially copyable and
/// destructible. Ordered by kind, then server, then channel, then text.
class Guid {
public:
    /// What kind of channel this is. The values are shared with the server.
    enum Type : int {
        Player = 0,
        Recorder = 1,
        Undefined = 2,  ///< no channel; what a default identifier holds
        Opaque = 3,     ///< a channel named by a text of another form; see `GetText()`
    };

    /// The undefined channel.
    Guid() = default;

    /// Channel `channel` of kind `type` on server `server`.
    Guid(Type type, int server, unsigned int channel) noexcept
        : type(type), server(server), channel(channel) {}

    static Guid PlayerOf(int server, unsigned int channel) { return {Player, server, channel}; }
    static Guid RecorderOf(int server, unsigned int channel) { return {Recorder, server, channel}; }

    /// The longest text an opaque identifier holds.
    static constexpr std::size_t kMaxTextLength = 64;

    /// The identifier a received wire text names: the player or recorder when the text is
    /// exactly the form above ("player:1:0", as `ToString` writes it), the undefined channel for
    /// the empty text, and otherwise an opaque identifier holding the text. Empty only for a
    /// text longer than `kMaxTextLength` that is not of our form.
    static std::optional<Guid> FromWireText(const std::string& text);

    Type GetType() const noexcept { return type; }
    /// Server and channel numbers; 0 for an undefined or opaque identifier.
    int GetServer() const noexcept { return server; }
    unsigned int GetChannel() const noexcept { return channel; }
    /// The text of an opaque identifier; empty for the others.
    std::string_view GetText() const noexcept { return {text.data(), textLength}; }
    bool IsUndefined() const noexcept { return type == Undefined; }

    /// The wire text: "player:1:0", "recorder:2:3", the text of an opaque identifier, or "" for
    /// an undefined channel.
    std::string ToString() const;

    /// The player or recorder a text names (leading zeros accepted, for typed input); empty when
    /// the text is not of the form above. The empty text is the undefined channel. Received
    /// texts go through `FromWireText` instead.
    static std::optional<Guid> Parse(const std::string& text);

    friend bool operator==(const Guid& left, const Guid& right) {
        return left.type == right.type && left.server == right.server &&
               left.channel == right.channel && left.GetText() == right.GetText();
    }
    friend bool operator!=(const Guid& left, const Guid& right) { return !(left == right); }
    friend bool operator<(const Guid& left, const Guid& right);

private:
    Type type = Undefined;
    int server = 0;
    unsigned int channel = 0;
    std::array<char, kMaxTextLength> text{};
    std::uint8_t textLength = 0;
};

}  // namespace Korvo::Plexis::Data::Channels

#pragma once

#include <optional>
#include <string>

namespace Korvo::Plexis::Data::Channels {

/// The identifier of a playout channel: a player or a recorder of one server.
///
/// On the wire a channel travels as an identifier text, "player:<server>:<channel>" or
/// "recorder:<server>:<channel>" in decimal (for example "player:1:0"); the undefined channel is
/// the empty text. Ordered by kind, then server, then channel.
class Guid {
public:
    /// What kind of channel this is. The values are shared with the server.
    enum Type : int {
        Player = 0,
        Recorder = 1,
        Undefined = 2,  ///< no channel; what a default identifier holds
    };

    /// The undefined channel.
    Guid() = default;

    /// Channel `channel` of kind `type` on server `server`.
    Guid(Type type, int server, unsigned int channel) noexcept
        : type(type), server(server), channel(channel) {}

    static Guid PlayerOf(int server, unsigned int channel) { return {Player, server, channel}; }
    static Guid RecorderOf(int server, unsigned int channel) { return {Recorder, server, channel}; }

    Type GetType() const noexcept { return type; }
    int GetServer() const noexcept { return server; }
    unsigned int GetChannel() const noexcept { return channel; }
    bool IsUndefined() const noexcept { return type != Player && type != Recorder; }

    /// The wire text: "player:1:0", "recorder:2:3", or "" for an undefined channel.
    std::string ToString() const;

    /// The channel a wire text names; empty when the text is not of the form above. The empty
    /// text is the undefined channel.
    static std::optional<Guid> Parse(const std::string& text);

    friend bool operator==(const Guid& left, const Guid& right) {
        return left.type == right.type && left.server == right.server &&
               left.channel == right.channel;
    }
    friend bool operator!=(const Guid& left, const Guid& right) { return !(left == right); }
    friend bool operator<(const Guid& left, const Guid& right);

private:
    Type type = Undefined;
    int server = 0;
    unsigned int channel = 0;
};

}  // namespace Korvo::Plexis::Data::Channels

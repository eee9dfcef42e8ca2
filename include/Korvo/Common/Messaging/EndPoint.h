#pragma once

#include <string>

namespace Korvo::Common::Messaging {

/// Where a server listens, and optionally the public key that authenticates it.
///
/// Text form: `<transport>://<address>[;curve=<key>]`, for example
///   `tcp://replay-1:5555`, `tcp://10.0.0.7:5556;curve=U}l/LsXuOY}{v31a-)^<<sKJ7w3OX%:u0KUa7Se}`,
///   `ipc:///run/tessel/commands`, `inproc://tessel-commands`.
/// The transport is `tcp` (`host:port`, the host a name or an address, IPv6 in brackets), `ipc` (a
/// path) or `inproc` (a name within the process, reached only from the context of
/// `SharedContext()`). The key is the server's CURVE public key, 40 characters of Z85 or 64
/// hexadecimal digits; with it the link is encrypted and the server must prove that it holds the
/// matching secret key. Values are immutable and compare by their normalised text. The full
/// syntax, and what each part means on the wire, is in docs/protocol.md.
class EndPoint {
public:
    /// Parses the text form above. Throws `std::invalid_argument` naming what is wrong.
    explicit EndPoint(const std::string& text);

    /// `address` without a key part, and `serverPublicKey` (Z85 or hexadecimal, or empty for an
    /// unencrypted link). Throws `std::invalid_argument` like the parsing constructor.
    EndPoint(const std::string& address, const std::string& serverPublicKey);

    /// The address handed to the transport, for example `tcp://replay-1:5555`.
    const std::string& Address() const noexcept { return address; }

    /// The server's public key in Z85 (40 characters); empty when the link is not encrypted.
    const std::string& ServerPublicKey() const noexcept { return serverKey; }

    /// Whether the link to this endpoint uses CURVE encryption.
    bool IsEncrypted() const noexcept { return !serverKey.empty(); }

    /// The text form, with the key in Z85 when there is one; parses back to an equal endpoint.
    std::string ToString() const;

    friend bool operator==(const EndPoint& left, const EndPoint& right) {
        return left.address == right.address && left.serverKey == right.serverKey;
    }
    friend bool operator!=(const EndPoint& left, const EndPoint& right) { return !(left == right); }

private:
    std::string address;
    std::string serverKey;
};

}  // namespace Korvo::Common::Messaging

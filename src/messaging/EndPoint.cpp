#include <Korvo/Common/Messaging/EndPoint.h>

#include <zmq.h>

#include <cctype>
#include <stdexcept>

namespace Korvo::Common::Messaging {
namespace {

constexpr char kKeySeparator[] = ";curve=";
constexpr std::size_t kZ85KeyLength = 40;
constexpr std::size_t kHexKeyLength = 64;
constexpr std::size_t kKeyBytes = 32;

[[noreturn]] void Reject(const std::string& text, const std::string& why) {
    throw std::invalid_argument("EndPoint \"" + text + "\": " + why + ".");
}

bool IsPort(const std::string& text) {
    if (text.empty() || text.size() > 5) {
        return false;
    }
    for (const char c : text) {
        if (!std::isdigit(static_cast<unsigned char>(c))) {
            return false;
        }
    }
    const long port = std::stol(text);
    return port > 0 && port <= 65535;
}

void CheckAddress(const std::string& address) {
    const std::size_t scheme = address.find("://");
    if (scheme == std::string::npos) {
        Reject(address, "expected <transport>://<address>");
    }
    const std::string transport = address.substr(0, scheme);
    const std::string rest = address.substr(scheme + 3);
    if (transport != "tcp" && transport != "ipc" && transport != "inproc") {
        Reject(address, "the transport must be tcp, ipc or inproc");
    }
    if (rest.empty()) {
        Reject(address, "nothing follows the transport");
    }
    if (transport == "tcp") {
        const std::size_t colon = rest.rfind(':');
        if (colon == std::string::npos || colon == 0 || !IsPort(rest.substr(colon + 1))) {
            Reject(address, "a tcp address is host:port, the port from 1 to 65535");
        }
        // An IPv6 address holds colons of its own, so it must be in brackets to be told from the
        // port, and the brackets must hold nothing else.
        const std::string host = rest.substr(0, colon);
        const bool bracketed = host.front() == '[';
        if (bracketed ? host.size() < 3 || host.back() != ']' ||
                            host.find_first_of("[]", 1) != host.size() - 1 ||
                            host.find(':') == std::string::npos
                      : host.find_first_of("[]:") != std::string::npos) {
            Reject(address, "an IPv6 host is written in brackets, as in tcp://[::1]:5555");
        }
    }
}

std::string NormaliseKey(const std::string& key) {
    unsigned char bytes[kKeyBytes];
    if (key.size() == kZ85KeyLength) {
        if (zmq_z85_decode(bytes, key.c_str()) == nullptr) {
            Reject(key, "the key is not Z85");
        }
        return key;
    }
    if (key.size() == kHexKeyLength) {
        for (std::size_t i = 0; i < kKeyBytes; ++i) {
            const std::string pair = key.substr(2 * i, 2);
            if (!std::isxdigit(static_cast<unsigned char>(pair[0])) ||
                !std::isxdigit(static_cast<unsigned char>(pair[1]))) {
                Reject(key, "the key is not hexadecimal");
            }
            bytes[i] = static_cast<unsigned char>(std::stoul(pair, nullptr, 16));
        }
        char z85[kZ85KeyLength + 1];
        zmq_z85_encode(z85, bytes, kKeyBytes);
        return z85;
    }
    Reject(key, "a key is 40 characters of Z85 or 64 hexadecimal digits");
}

}  // namespace

EndPoint::EndPoint(const std::string& text) {
    const std::size_t separator = text.rfind(kKeySeparator);
    address = text.substr(0, separator);
    CheckAddress(address);
    if (separator != std::string::npos) {
        serverKey = NormaliseKey(text.substr(separator + sizeof kKeySeparator - 1));
    }
}

EndPoint::EndPoint(const std::string& address, const std::string& serverPublicKey)
    : address(address) {
    CheckAddress(address);
    if (!serverPublicKey.empty()) {
        serverKey = NormaliseKey(serverPublicKey);
    }
}

std::string EndPoint::ToString() const {
    return serverKey.empty() ? address : address + kKeySeparator + serverKey;
}

}  // namespace Korvo::Common::Messaging

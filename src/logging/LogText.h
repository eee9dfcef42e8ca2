#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Korvo::Plexis::Tessel::Logging {

/// Text that came from the network (a header, an identifier, an exception's message built from
/// one), made safe to put in a log line: at most `limit` bytes of it are kept, followed by
/// "...(N bytes)" when it was longer; a backslash and every byte that is not printable ASCII
/// (control characters, line breaks, escape sequences, other encodings) are written as "\xNN",
/// so that the text can neither start a line of its own nor drive a terminal.
inline std::string Printable(std::string_view text, std::size_t limit = 128) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string printable;
    const std::size_t kept = text.size() < limit ? text.size() : limit;
    printable.reserve(kept + 16);
    for (std::size_t i = 0; i < kept; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte >= 0x20 && byte < 0x7F && byte != '\\') {
            printable += static_cast<char>(byte);
        } else {
            printable += "\\x";
            printable += kDigits[byte >> 4];
            printable += kDigits[byte & 0x0F];
        }
    }
    if (kept < text.size()) {
        printable += "...(" + std::to_string(text.size()) + " bytes)";
    }
    return printable;
}

}  // namespace Korvo::Plexis::Tessel::Logging

#pragma once

#include <string>
#include <utility>

#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Data::Clips {

/// A text that is either 8-bit characters or UTF-16 code units. The bytes are kept as they came:
/// no conversion happens on the way to or from the server.
struct AsciiOrUtf16String {
    std::string data;      ///< the text's bytes
    bool isUtf16 = false;  ///< true when `data` holds UTF-16 code units

    AsciiOrUtf16String() = default;
    AsciiOrUtf16String(std::string data, bool isUtf16) : data(std::move(data)), isUtf16(isUtf16) {}

    /// An 8-bit text.
    static AsciiOrUtf16String Ascii(std::string text) { return {std::move(text), false}; }

    KORVO_FIELDS(AsciiOrUtf16String, data, isUtf16)
};

}  // namespace Korvo::Plexis::Data::Clips

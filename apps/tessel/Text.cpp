#include "Text.h"

#include <iconv.h>

#include <algorithm>
#include <cstdio>

#include "Errors.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace {

constexpr double kFieldsPerSecond = 50.0;

template <class T>
std::string NumberOrDash(const std::optional<T>& value) {
    return value ? std::to_string(*value) : "-";
}

}  // namespace

std::string PlayModeText(std::int32_t playMode) {
    static const char* const kModes[] = {"idle", "cued", "playing", "live", "dialing"};
    if (playMode >= 0 && playMode < 5) {
        return kModes[playMode];
    }
    return "mode " + std::to_string(playMode);
}

std::string LoadedText(const Data::Channels::PlayerState& state) {
    switch (state.loadedMaterialType) {
        case 1:
            return "clip \"" + TextOf(state.currentClip.clip.name) + "\"";
        case 2:
            return "playlist " + Trimmed(state.loadedSequenceUmId);
        case 3:
            return "live " + Dash(state.liveRecorderName);
        default:
            return "-";
    }
}

std::string SpeedText(std::int32_t numerator, std::int32_t denominator) {
    if (denominator == 0) {
        return "-";
    }
    if (numerator == 0) {
        return "0";
    }
    return std::to_string(numerator) + "/" + std::to_string(denominator);
}

std::string FieldsText(std::int64_t fields) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f s", static_cast<double>(fields) / kFieldsPerSecond);
    return text;
}

std::string Dash(const std::string& text) {
    return text.empty() ? "-" : text;
}

std::string OptionalText(const std::optional<std::string>& value) {
    return value ? "\"" + *value + "\"" : "-";
}

std::string OptionalText(const std::optional<std::int32_t>& value) {
    return NumberOrDash(value);
}

std::string OptionalText(const std::optional<std::int64_t>& value) {
    return NumberOrDash(value);
}

std::string OptionalText(const std::optional<bool>& value) {
    return value ? (*value ? "yes" : "no") : "-";
}

std::string Trimmed(const std::string& text) {
    const auto end = text.find_last_not_of(' ');
    return end == std::string::npos ? std::string() : text.substr(0, end + 1);
}

std::string TextOf(const Data::Clips::AsciiOrUtf16String& text) {
    if (!text.isUtf16) {
        return text.data;
    }
    // Big-endian code units, converted by the C library; what does not convert shows as "?".
    const iconv_t converter = ::iconv_open("UTF-8", "UTF-16BE");
    if (converter == reinterpret_cast<iconv_t>(-1)) {
        return "?";
    }
    std::string input = text.data;
    std::string output(input.size() * 2 + 4, '\0');
    char* in = input.data();
    char* out = output.data();
    std::size_t inLeft = input.size();
    std::size_t outLeft = output.size();
    while (inLeft > 0 &&
           ::iconv(converter, &in, &inLeft, &out, &outLeft) == static_cast<std::size_t>(-1)) {
        // Skip one undecodable code unit (or a lone trailing byte) and go on.
        const std::size_t skip = std::min<std::size_t>(2, inLeft);
        in += skip;
        inLeft -= skip;
        if (outLeft > 0) {
            *out++ = '?';
            --outLeft;
        }
    }
    ::iconv_close(converter);
    output.resize(output.size() - outLeft);
    return output;
}

std::string KeywordsText(const std::vector<Data::Clips::AsciiOrUtf16String>& keywords) {
    std::string text;
    for (const auto& keyword : keywords) {
        text += (text.empty() ? "" : ", ") + TextOf(keyword);
    }
    return Dash(text);
}

std::string JoinNumbers(const std::vector<std::int32_t>& numbers) {
    std::string text;
    for (const auto number : numbers) {
        text += (text.empty() ? "" : ",") + std::to_string(number);
    }
    return Dash(text);
}

namespace {

// The length of the well-formed UTF-8 sequence at `at` (shortest form, no surrogates, at most
// U+10FFFF), or 0.
std::size_t SequenceLength(const std::string& text, std::size_t at) {
    const auto byte = [&](std::size_t index) -> unsigned {
        return index < text.size() ? static_cast<unsigned char>(text[index]) : 0u;
    };
    const auto continuation = [&](std::size_t index) { return (byte(index) & 0xC0) == 0x80; };
    const unsigned lead = byte(at);
    const unsigned second = byte(at + 1);
    if (lead >= 0xC2 && lead <= 0xDF) {
        return continuation(at + 1) ? 2 : 0;
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        const bool shortest = lead != 0xE0 || second >= 0xA0;
        const bool surrogate = lead == 0xED && second >= 0xA0;
        return shortest && !surrogate && continuation(at + 1) && continuation(at + 2) ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const bool shortest = lead != 0xF0 || second >= 0x90;
        const bool inRange = lead != 0xF4 || second < 0x90;
        return shortest && inRange && continuation(at + 1) && continuation(at + 2) &&
                       continuation(at + 3)
                   ? 4
                   : 0;
    }
    return 0;
}

}  // namespace

std::string Printable(const std::string& text) {
    std::string shown;
    shown.reserve(text.size());
    const auto escape = [&shown](unsigned char byte) {
        char code[8];
        std::snprintf(code, sizeof code, "\\x%02X", byte);
        shown += code;
    };
    for (std::size_t at = 0; at < text.size();) {
        const auto byte = static_cast<unsigned char>(text[at]);
        const std::size_t length = byte < 0x80 ? 1 : SequenceLength(text, at);
        if (byte == '\\') {
            shown += "\\\\";
        } else if (byte < 0x20 || byte == 0x7F || length == 0) {
            escape(byte);
        } else if (byte == 0xC2 && static_cast<unsigned char>(text[at + 1]) < 0xA0) {
            escape(byte);  // a C1 control: both of its bytes shown
            escape(static_cast<unsigned char>(text[at + 1]));
        } else {
            shown.append(text, at, length);
        }
        at += std::max<std::size_t>(length, 1);
    }
    return shown;
}

std::size_t DisplayWidth(const std::string& text) {
    std::size_t width = 0;
    for (const char byte : text) {
        width += (static_cast<unsigned char>(byte) & 0xC0) != 0x80 ? 1 : 0;
    }
    return width;
}

Data::Channels::Guid ParseChannel(const std::string& text, Data::Channels::Guid::Type kind) {
    const char* prefix = kind == Data::Channels::Guid::Player ? "player:" : "recorder:";
    const bool shortForm = !text.empty() && text[0] >= '0' && text[0] <= '9';
    const auto channel = Data::Channels::Guid::Parse(shortForm ? prefix + text : text);
    if (!channel || channel->IsUndefined()) {
        throw CliError(ExitCode::Usage, "\"" + text + "\" is not a channel: write " + prefix +
                                            "<server>:<channel> or <server>:<channel>");
    }
    return *channel;
}

}  // namespace Korvo::Plexis::Tessel::Cli

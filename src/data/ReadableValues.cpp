#include <Korvo/Plexis/Data/ReadableValues.h>

namespace Korvo::Plexis::Data {
namespace {

std::string Unknown(std::int32_t value) { return "Unknown(" + std::to_string(value) + ")"; }

void AppendUtf8(std::string& text, std::uint32_t codePoint) {
    if (codePoint < 0x80) {
        text += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        text += static_cast<char>(0xC0 | (codePoint >> 6));
        text += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        text += static_cast<char>(0xE0 | (codePoint >> 12));
        text += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else {
        text += static_cast<char>(0xF0 | (codePoint >> 18));
        text += static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F));
        text += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (codePoint & 0x3F));
    }
}

// The length of the well-formed UTF-8 sequence at `index`, or 0.
std::size_t Utf8SequenceAt(const std::string& bytes, std::size_t index) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
    const unsigned char lead = byte(index);
    std::size_t length = lead < 0x80 ? 1 : lead >= 0xC2 && lead < 0xE0 ? 2 : lead >= 0xE0 && lead < 0xF0 ? 3 : lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
    if (length == 0 || index + length > bytes.size()) {
        return 0;
    }
    for (std::size_t next = 1; next < length; ++next) {
        if ((byte(index + next) & 0xC0) != 0x80) {
            return 0;
        }
    }
    // Overlong three- and four-byte forms, surrogates and values beyond U+10FFFF.
    if ((lead == 0xE0 && byte(index + 1) < 0xA0) || (lead == 0xED && byte(index + 1) >= 0xA0) ||
        (lead == 0xF0 && byte(index + 1) < 0x90) || (lead == 0xF4 && byte(index + 1) >= 0x90)) {
        return 0;
    }
    return length;
}

bool IsUtf8(const std::string& bytes) {
    for (std::size_t index = 0; index < bytes.size();) {
        const std::size_t length = Utf8SequenceAt(bytes, index);
        if (length == 0) {
            return false;
        }
        index += length;
    }
    return true;
}

}  // namespace

#define KORVO_NAME_CASE(Name, Value) \
    case Value:                      \
        return #Name;
std::string ToString(PlayMode mode) {
    switch (static_cast<std::int32_t>(mode)) { KORVO_PLAY_MODES(KORVO_NAME_CASE) }
    return Unknown(static_cast<std::int32_t>(mode));
}
std::string ToString(MaterialType type) {
    switch (static_cast<std::int32_t>(type)) { KORVO_MATERIAL_TYPES(KORVO_NAME_CASE) }
    return Unknown(static_cast<std::int32_t>(type));
}
std::string ToString(ServerStatus status) {
    switch (static_cast<std::int32_t>(status)) { KORVO_SERVER_STATUSES(KORVO_NAME_CASE) }
    return Unknown(static_cast<std::int32_t>(status));
}
#undef KORVO_NAME_CASE

std::string ToString(RecorderActivity activity) {
    return activity == RecorderActivity::Recording ? "Recording" : "Idle";
}

OutcomeStatus OutcomeStatusOf(const OperationStatus& status) {
#define KORVO_OUTCOME_MATCH(Name, Code, Reason)                  \
    if (status.code == (Code) && status.reason == (Reason)) {   \
        return OutcomeStatus::Name;                              \
    }
    KORVO_OUTCOME_STATUSES(KORVO_OUTCOME_MATCH)
#undef KORVO_OUTCOME_MATCH
    return OutcomeStatus::Other;
}

std::string ToString(OutcomeStatus status) {
    switch (status) {
#define KORVO_OUTCOME_NAME(Name, Code, Reason) \
    case OutcomeStatus::Name:                  \
        return #Name;
        KORVO_OUTCOME_STATUSES(KORVO_OUTCOME_NAME)
#undef KORVO_OUTCOME_NAME
        case OutcomeStatus::Other:
            break;
    }
    return "Other";
}

std::string ToString(const OperationStatus& status) {
    const OutcomeStatus named = OutcomeStatusOf(status);
    return named != OutcomeStatus::Other ? ToString(named)
                                         : "Other(" + std::to_string(status.code) + ", " +
                                               std::to_string(status.reason) + ")";
}

std::string ToUtf8(const Clips::AsciiOrUtf16String& text) {
    const std::string& bytes = text.data;
    std::string utf8;
    if (!text.isUtf16) {
        if (IsUtf8(bytes)) {
            return bytes;
        }
        for (const char byte : bytes) {
            AppendUtf8(utf8, static_cast<unsigned char>(byte));
        }
        return utf8;
    }
    constexpr std::uint32_t kReplacement = 0xFFFD;
    const auto unitAt = [&](std::size_t index) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[index]) << 8 |
                                          static_cast<unsigned char>(bytes[index + 1]));
    };
    std::size_t index = 0;
    for (; index + 1 < bytes.size(); index += 2) {
        const std::uint32_t unit = unitAt(index);
        if (unit >= 0xD800 && unit < 0xDC00 && index + 3 < bytes.size()) {
            const std::uint32_t low = unitAt(index + 2);
            if (low >= 0xDC00 && low < 0xE000) {
                AppendUtf8(utf8, 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
                index += 2;
                continue;
            }
        }
        AppendUtf8(utf8, unit >= 0xD800 && unit < 0xE000 ? kReplacement : unit);
    }
    if (index < bytes.size()) {
        AppendUtf8(utf8, kReplacement);
    }
    return utf8;
}

}  // namespace Korvo::Plexis::Data

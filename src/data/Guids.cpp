#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/Guid.h>

#include <algorithm>
#include <charconv>
#include <tuple>

namespace Korvo::Plexis::Data {

const Guid& Guid::Empty() {
    static const Guid empty;
    return empty;
}

namespace Channels {
namespace {

constexpr char kPlayerPrefix[] = "player:";
constexpr char kRecorderPrefix[] = "recorder:";

bool StartsWith(const std::string& text, const char* prefix, std::size_t length) {
    return text.compare(0, length, prefix) == 0;
}

// Reads a whole decimal number from [first, last); false unless every character is used.
template <class Number>
bool ReadNumber(const char* first, const char* last, Number& number) {
    if (first == last) {
        return false;
    }
    const auto result = std::from_chars(first, last, number);
    return result.ec == std::errc() && result.ptr == last;
}

}  // namespace

std::string Guid::ToString() const {
    if (type == Opaque) {
        return std::string(GetText());
    }
    if (IsUndefined()) {
        return {};
    }
    return (type == Player ? kPlayerPrefix : kRecorderPrefix) + std::to_string(server) + ":" +
           std::to_string(channel);
}

std::optional<Guid> Guid::Parse(const std::string& text) {
    if (text.empty()) {
        return Guid();
    }
    Type type;
    std::size_t prefix;
    if (StartsWith(text, kPlayerPrefix, sizeof kPlayerPrefix - 1)) {
        type = Player;
        prefix = sizeof kPlayerPrefix - 1;
    } else if (StartsWith(text, kRecorderPrefix, sizeof kRecorderPrefix - 1)) {
        type = Recorder;
        prefix = sizeof kRecorderPrefix - 1;
    } else {
        return std::nullopt;
    }
    const char* begin = text.data() + prefix;
    const char* end = text.data() + text.size();
    const char* colon = std::find(begin, end, ':');
    int server = 0;
    unsigned int channel = 0;
    if (colon == end || !ReadNumber(begin, colon, server) || !ReadNumber(colon + 1, end, channel)) {
        return std::nullopt;
    }
    return Guid(type, server, channel);
}

std::optional<Guid> Guid::FromWireText(const std::string& text) {
    // Only the exact spelling that ToString writes is parsed, so that two different texts never
    // become one identifier; anything else is kept as it came.
    auto parsed = Parse(text);
    if (parsed && parsed->ToString() == text) {
        return parsed;
    }
    if (text.size() > kMaxTextLength) {
        return std::nullopt;
    }
    Guid opaque;
    opaque.type = Opaque;
    std::copy(text.begin(), text.end(), opaque.text.begin());
    opaque.textLength = static_cast<std::uint8_t>(text.size());
    return opaque;
}

bool operator<(const Guid& left, const Guid& right) {
    const auto leftText = left.GetText();
    const auto rightText = right.GetText();
    return std::tie(left.type, left.server, left.channel, leftText) <
           std::tie(right.type, right.server, right.channel, rightText);
}

}  // namespace Channels
}  // namespace Korvo::Plexis::Data

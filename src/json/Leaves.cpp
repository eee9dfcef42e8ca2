// The leaf codecs of the JSON form (texts, identifiers, channels, time codes), the failure type
// and the parsing and printing of whole texts.

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <random>
#include <set>
#include <vector>

#include <Korvo/Plexis/Data/ReadableValues.h>

#include "json/JsonCodec.h"

namespace Korvo::Plexis::Tessel::Json {

JsonError::JsonError(Kind kind, std::string path, const std::string& detail)
    : std::invalid_argument(path.empty() ? detail : path + ": " + detail),
      kind(kind),
      path(std::move(path)) {}

const char* JsonError::KindName(Kind kind) noexcept {
    switch (kind) {
        case Kind::Syntax:
            return "Syntax";
        case Kind::UnknownName:
            return "UnknownName";
        case Kind::UnknownField:
            return "UnknownField";
        case Kind::WrongType:
            return "WrongType";
        case Kind::MissingField:
            return "MissingField";
        case Kind::BadChannel:
            return "BadChannel";
        case Kind::BadValue:
            return "BadValue";
    }
    return "Unknown";
}

namespace Detail {

namespace {

const char* Describe(const Value& value) {
    switch (value.type()) {
        case Value::value_t::null:
            return "null";
        case Value::value_t::boolean:
            return "a boolean";
        case Value::value_t::string:
            return "a string";
        case Value::value_t::number_float:
            return "a fractional number";
        case Value::value_t::number_integer:
        case Value::value_t::number_unsigned:
            return "an integer";
        case Value::value_t::array:
            return "an array";
        default:
            return "an object";
    }
}

void AppendUtf16(std::string& bytes, std::uint32_t unit) {
    bytes += static_cast<char>(unit >> 8);
    bytes += static_cast<char>(unit & 0xFF);
}

// UTF-8 (already checked by the parser) to big-endian UTF-16 code units.
std::string Utf8ToUtf16(const std::string& text) {
    std::string bytes;
    for (std::size_t index = 0; index < text.size();) {
        const auto lead = static_cast<unsigned char>(text[index]);
        const int length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        std::uint32_t codePoint = length == 1 ? lead
                                              : lead & (length == 2   ? 0x1F
                                                        : length == 3 ? 0x0F
                                                                      : 0x07);
        for (int next = 1; next < length && index + next < text.size(); ++next) {
            codePoint = codePoint << 6 | (static_cast<unsigned char>(text[index + next]) & 0x3F);
        }
        index += static_cast<std::size_t>(length);
        if (codePoint >= 0x10000) {
            codePoint -= 0x10000;
            AppendUtf16(bytes, 0xD800 + (codePoint >> 10));
            AppendUtf16(bytes, 0xDC00 + (codePoint & 0x3FF));
        } else {
            AppendUtf16(bytes, codePoint);
        }
    }
    return bytes;
}

}  // namespace

void Reader::Expect(bool ok, const char* expected, const Value& value) const {
    if (!ok) {
        Fail(Kind::WrongType, std::string("expected ") + expected + ", found " + Describe(value));
    }
}

void CheckKeys(const Value& object, const std::vector<const char*>& known, Reader& reader) {
    for (const auto& item : object.items()) {
        bool found = false;
        for (const char* name : known) {
            found = found || item.key() == name;
        }
        if (!found) {
            std::string names;
            for (const char* name : known) {
                names += (names.empty() ? "" : ", ") + std::string(name);
            }
            Reader::Scope scope(reader, item.key());
            reader.Fail(Kind::UnknownField,
                        "unknown field (known: " + (names.empty() ? "none" : names) + ")");
        }
    }
}

std::string NewCommandGuid() {
    thread_local std::mt19937_64 generator{std::random_device{}()};
    const std::uint64_t high = generator();
    const std::uint64_t low = generator();
    // Version 4 (random) and the variant bits 10, in the usual 8-4-4-4-12 grouping.
    char text[37];
    std::snprintf(text, sizeof text, "%08x-%04x-4%03x-%04x-%012llx",
                  static_cast<unsigned>(high >> 32), static_cast<unsigned>(high >> 16 & 0xFFFF),
                  static_cast<unsigned>(high & 0x0FFF),
                  static_cast<unsigned>(0x8000 | (low >> 48 & 0x3FFF)),
                  static_cast<unsigned long long>(low & 0xFFFFFFFFFFFFULL));
    return text;
}

void Codec<std::string>::Read(const Value& json, std::string& value, Reader& reader) {
    reader.Expect(json.is_string(), "a string", json);
    value = json.get<std::string>();
}

Data::Channels::Guid KeyCodec<Data::Channels::Guid>::Read(const std::string& text, Reader& reader) {
    auto channel = Data::Channels::Guid::Parse(text);
    if (!channel) {
        reader.Fail(Kind::BadChannel, Value(text).dump() +
                                          " is not a channel; expected \"player:<server>:"
                                          "<channel>\" or \"recorder:<server>:<channel>\"");
    }
    return *channel;
}

void Codec<Data::Channels::Guid>::Read(const Value& json, Data::Channels::Guid& value,
                                       Reader& reader) {
    std::string text;
    Codec<std::string>::Read(json, text, reader);
    value = KeyCodec<Data::Channels::Guid>::Read(text, reader);
}

std::int32_t KeyCodec<std::int32_t>::Read(const std::string& text, Reader& reader) {
    std::int32_t key = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), key);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
        reader.Fail(Kind::BadValue,
                    Value(text).dump() + " is not a key; expected a 32-bit integer in decimal");
    }
    return key;
}

void Codec<Data::Clips::AsciiOrUtf16String>::Write(const Data::Clips::AsciiOrUtf16String& value,
                                                   Value& json) {
    if (value.isUtf16) {
        json = Value::object();
        json["utf16"] = Data::ToUtf8(value);
    } else {
        json = value.data;
    }
}

void Codec<Data::Clips::AsciiOrUtf16String>::Read(const Value& json,
                                                  Data::Clips::AsciiOrUtf16String& value,
                                                  Reader& reader) {
    if (json.is_string()) {
        value = {json.get<std::string>(), false};
        return;
    }
    reader.Expect(json.is_object(), "a string or {\"utf16\": a string}", json);
    CheckKeys(json, {"utf16"}, reader);
    std::string text;
    ReadMember(json, "utf16", text, reader, true);
    value = {Utf8ToUtf16(text), true};
}

void Codec<TimePoints::TimeCode>::Write(const TimePoints::TimeCode& value, Value& json) {
    json = Value::object();
    json["rateNumerator"] = value.RateNumerator();
    json["rateDenominator"] = value.RateDenominator();
    json["sample"] = value.Sample();
    json["dropFrame"] = value.IsDropFrame();
    json["valid"] = value.IsValid();
}

void Codec<TimePoints::TimeCode>::Read(const Value& json, TimePoints::TimeCode& value,
                                       Reader& reader) {
    reader.Expect(json.is_object(), "an object", json);
    CheckKeys(json, {"rateNumerator", "rateDenominator", "sample", "dropFrame", "valid"}, reader);
    std::int64_t rateNumerator = value.RateNumerator();
    std::int64_t rateDenominator = value.RateDenominator();
    std::int64_t sample = value.Sample();
    bool dropFrame = value.IsDropFrame();
    bool valid = value.IsValid();
    ReadMember(json, "rateNumerator", rateNumerator, reader);
    ReadMember(json, "rateDenominator", rateDenominator, reader);
    ReadMember(json, "sample", sample, reader);
    ReadMember(json, "dropFrame", dropFrame, reader);
    ReadMember(json, "valid", valid, reader);
    value = TimePoints::TimeCode(rateNumerator, rateDenominator, sample, dropFrame, valid);
}

namespace {

// Follows the parser through nested objects and arrays to find a key that an object repeats
// (the parser would keep one of the values silently), and says where it is, from the root.
class DuplicateKeyFinder {
public:
    bool operator()(int, Value::parse_event_t event, Value& parsed) {
        using Event = Value::parse_event_t;
        switch (event) {
            case Event::object_start:
            case Event::array_start:
                frames.push_back({event == Event::object_start, {}, {}, 0});
                break;
            case Event::object_end:
            case Event::array_end:
                frames.pop_back();
                Completed();
                break;
            case Event::key: {
                Frame& frame = frames.back();
                frame.key = parsed.get<std::string>();
                if (!frame.keys.insert(frame.key).second) {
                    throw JsonError(JsonError::Kind::Syntax, Path(),
                                    "the key \"" + frame.key + "\" occurs twice in one object");
                }
                break;
            }
            case Event::value:
                Completed();
                break;
        }
        return true;
    }

private:
    struct Frame {
        bool object;
        std::set<std::string> keys;
        std::string key;    // in an object: the key of the value being read
        std::size_t index;  // in an array: the index of the value being read
    };

    static bool IsName(const std::string& key) {
        return !key.empty() && !std::isdigit(static_cast<unsigned char>(key[0])) &&
               std::all_of(key.begin(), key.end(), [](char c) {
                   return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
               });
    }

    void Completed() {
        if (!frames.empty() && !frames.back().object) {
            ++frames.back().index;
        }
    }

    std::string Path() const {
        std::string path;
        for (const Frame& frame : frames) {
            if (!frame.object) {
                path += "[" + std::to_string(frame.index) + "]";
            } else if (IsName(frame.key)) {
                path += (path.empty() ? "" : ".") + frame.key;
            } else {
                path += "[\"" + frame.key + "\"]";  // a map key such as a channel text
            }
        }
        return path;
    }

    std::vector<Frame> frames;
};

}  // namespace

Value Parse(std::string_view text) {
    try {
        return Value::parse(text.begin(), text.end(), DuplicateKeyFinder());
    } catch (const Value::parse_error& error) {
        // Drop the library's "[json.exception.parse_error.101] " tag; keep "parse error at line
        // 1, column 5: ...".
        std::string message = error.what();
        const auto tagEnd = message.find("] ");
        if (message.rfind("[json.exception.", 0) == 0 && tagEnd != std::string::npos) {
            message.erase(0, tagEnd + 2);
        }
        throw JsonError(Kind::Syntax, "", message);
    }
}

std::string Dump(const Value& json, int indent) {
    return json.dump(indent, ' ', false, Value::error_handler_t::replace);
}

}  // namespace Detail

}  // namespace Korvo::Plexis::Tessel::Json

#pragma once

// Conversion between domain values and JSON, both directions, driven by each class's own field
// list (`KORVO_FIELDS`): the same list serves writing and reading. Leaves (numbers, texts,
// identifiers, channels, time codes) have a codec of their own; containers and classes with a field
// list are walked.
//
// Reading is strict: a value of the wrong JSON type, an unknown key, a missing required field and
// a value out of range each fail with a `JsonError` that names the path of the offending field.
// Missing fields that are not required keep the value the object already has, which for a
// freshly made object is the class's default.

#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/Clips/AsciiOrUtf16String.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ChannelCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/Json/JsonError.h>
#include <Korvo/TimePoints/TimeCode.h>

#include "descriptors/Descriptors.h"

namespace Korvo::Plexis::Tessel::Json::Detail {

/// Objects keep their keys in insertion order, which is the field list's order.
using Value = nlohmann::ordered_json;
using Kind = JsonError::Kind;

/// The path of the value being read, for failure messages.
class Reader {
public:
    [[noreturn]] void Fail(Kind kind, const std::string& detail) const {
        throw JsonError(kind, path, detail);
    }
    /// Fails with WrongType unless `ok`: "expected <expected>, found <what value is>".
    void Expect(bool ok, const char* expected, const Value& value) const;

    /// Appends a path part while alive: a field name, an index or a map key.
    class Scope {
    public:
        Scope(Reader& reader, const std::string& part) : reader(reader), size(reader.path.size()) {
            const bool bracket = !part.empty() && part.front() == '[';
            reader.path += (reader.path.empty() || bracket ? "" : ".") + part;
        }
        ~Scope() { reader.path.resize(size); }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        Reader& reader;
        std::size_t size;
    };

private:
    std::string path;
};

/// The JSON form of one type: `Write(value, json)` and `Read(json, value, reader)`. Specialised
/// below for leaves and containers; classes with a field list are walked.
template <class T, class Enable = void>
struct Codec;

using Data::FieldList::HasDescriptor;
using Data::FieldList::IsOptional;
using Data::FieldList::IsSet;

/// A new command identifier: a random version-4 UUID in its usual text form.
std::string NewCommandGuid();

/// Fails with UnknownField for the first key of `object` that is not in `known`.
void CheckKeys(const Value& object, const std::vector<const char*>& known, Reader& reader);

/// Writes `value` as `object[name]`; an absent optional writes nothing.
template <class T>
void WriteMember(const char* name, const T& value, Value& object) {
    if constexpr (IsOptional<T>::value) {
        if (value) {
            Codec<typename T::value_type>::Write(*value, object[name]);
        }
    } else {
        Codec<T>::Write(value, object[name]);
    }
}

/// Reads `object[name]` into `value`. An absent key (or null, for an optional) fails when
/// `required`, resets an optional and otherwise leaves `value` as it is.
template <class T>
void ReadMember(const Value& object, const char* name, T& value, Reader& reader,
                bool required = false) {
    const auto found = object.find(name);
    const bool absent =
        found == object.end() || (IsOptional<T>::value && found->is_null() && !required);
    Reader::Scope scope(reader, name);
    if (absent) {
        if (required) {
            reader.Fail(Kind::MissingField, "required field is missing");
        }
        if constexpr (IsOptional<T>::value) {
            value.reset();
        }
        return;
    }
    if constexpr (IsOptional<T>::value) {
        value.emplace();
        Codec<typename T::value_type>::Read(*found, *value, reader);
    } else {
        Codec<T>::Read(*found, value, reader);
    }
}

/// The members of a class that a JSON object must give (when read); none unless the class has a
/// list (KORVO_JSON_REQUIRED in RequiredFields.h).
template <class T>
struct Required {
    static constexpr const char* names[] = {""};
};

constexpr bool SameName(const char* left, const char* right) {
    while (*left != '\0' && *left == *right) {
        ++left;
        ++right;
    }
    return *left == *right;
}

template <class T>
constexpr bool IsRequired(const char* name) {
    for (const char* required : Required<T>::names) {
        if (SameName(required, name)) {
            return true;
        }
    }
    return false;
}

/// A class with a field list (`KORVO_FIELDS`): an object of its fields, in list order, those of
/// its bases first.
template <class T>
struct Codec<T, std::enable_if_t<HasDescriptor<T>::value>> {
    static void Write(const T& value, Value& json) {
        json = Value::object();
        Data::FieldList::ForEachMember<T>(
            [&](const auto& entry) { WriteMember(entry.name, value.*(entry.pointer), json); });
    }
    static void Read(const Value& json, T& value, Reader& reader) {
        reader.Expect(json.is_object(), "an object", json);
        std::vector<const char*> known;
        Data::FieldList::ForEachMember<T>([&](const auto& entry) { known.push_back(entry.name); });
        CheckKeys(json, known, reader);
        Data::FieldList::ForEachMember<T>([&](const auto& entry) {
            ReadMember(json, entry.name, value.*(entry.pointer), reader, IsRequired<T>(entry.name));
        });
        if constexpr (std::is_base_of_v<HighLevelOperations::Commands::CommandParams, T>) {
            // Every command needs an identifier of its own; a person typing one in need not.
            if (!json.contains("commandGuid")) {
                value.commandGuid = Data::Guid(NewCommandGuid());
            }
        }
    }
};

template <>
struct Codec<bool> {
    static void Write(bool value, Value& json) { json = value; }
    static void Read(const Value& json, bool& value, Reader& reader) {
        reader.Expect(json.is_boolean(), "true or false", json);
        value = json.get<bool>();
    }
};

/// Integers are JSON numbers, read exactly and checked against the member's range.
template <class T>
struct Codec<T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>>> {
    static void Write(T value, Value& json) { json = value; }
    static void Read(const Value& json, T& value, Reader& reader) {
        reader.Expect(json.is_number_integer(), "an integer", json);
        bool fits;
        if (json.is_number_unsigned()) {
            fits = json.get<std::uint64_t>() <=
                   static_cast<std::uint64_t>(std::numeric_limits<T>::max());
        } else {
            const auto number = json.get<std::int64_t>();
            fits = number >= static_cast<std::int64_t>(std::numeric_limits<T>::min()) &&
                   number <= static_cast<std::int64_t>(std::numeric_limits<T>::max());
        }
        if (!fits) {
            reader.Fail(Kind::BadValue, json.dump() + " is out of range (" +
                                            std::to_string(std::numeric_limits<T>::min()) + " to " +
                                            std::to_string(std::numeric_limits<T>::max()) + ")");
        }
        value = json.is_number_unsigned() ? static_cast<T>(json.get<std::uint64_t>())
                                          : static_cast<T>(json.get<std::int64_t>());
    }
};

template <>
struct Codec<std::string> {
    static void Write(const std::string& value, Value& json) { json = value; }
    static void Read(const Value& json, std::string& value, Reader& reader);
};

/// Identifiers (`Data::Guid` and the ones derived from it) are their text.
template <class T>
struct Codec<T, std::enable_if_t<std::is_base_of_v<Data::Guid, T>>> {
    static void Write(const T& value, Value& json) { json = value.GetValue(); }
    static void Read(const Value& json, T& value, Reader& reader) {
        std::string text;
        Codec<std::string>::Read(json, text, reader);
        value = T(std::move(text));
    }
};

/// A channel is its wire text, "player:1:0" or "recorder:2:3"; the undefined channel is "".
template <>
struct Codec<Data::Channels::Guid> {
    static void Write(const Data::Channels::Guid& value, Value& json) { json = value.ToString(); }
    static void Read(const Value& json, Data::Channels::Guid& value, Reader& reader);
};

/// 8-bit text is a JSON string; UTF-16 text is {"utf16": "<the text>"}, its big-endian code units
/// converted to and from UTF-8.
template <>
struct Codec<Data::Clips::AsciiOrUtf16String> {
    static void Write(const Data::Clips::AsciiOrUtf16String& value, Value& json);
    static void Read(const Value& json, Data::Clips::AsciiOrUtf16String& value, Reader& reader);
};

/// A time code: its rate, its frame count from 1 January 1900 and its two flags, by the names of
/// its accessors.
template <>
struct Codec<TimePoints::TimeCode> {
    static void Write(const TimePoints::TimeCode& value, Value& json);
    static void Read(const Value& json, TimePoints::TimeCode& value, Reader& reader);
};

/// The channel reply lists only its used results; `count` follows from the list.
template <>
struct Codec<HighLevelOperations::Commands::ChannelCommandReply> {
    static void Write(const HighLevelOperations::Commands::ChannelCommandReply& value, Value& json);
    static void Read(const Value& json, HighLevelOperations::Commands::ChannelCommandReply& value,
                     Reader& reader);
};

/// Lists and sets are arrays.
template <class Container>
struct ArrayCodec {
    using Element = typename Container::value_type;
    static void Write(const Container& value, Value& json) {
        json = Value::array();
        for (const auto& element : value) {
            Codec<Element>::Write(element, json.emplace_back());
        }
    }
    static void Read(const Value& json, Container& value, Reader& reader) {
        reader.Expect(json.is_array(), "an array", json);
        value.clear();
        for (std::size_t index = 0; index < json.size(); ++index) {
            Reader::Scope scope(reader, "[" + std::to_string(index) + "]");
            Element element{};
            Codec<Element>::Read(json[index], element, reader);
            if constexpr (IsSet<Container>::value) {
                value.insert(std::move(element));
            } else {
                value.push_back(std::move(element));
            }
        }
    }
};

template <class T, class A>
struct Codec<std::vector<T, A>> : ArrayCodec<std::vector<T, A>> {};
template <class T, class C, class A>
struct Codec<std::set<T, C, A>> : ArrayCodec<std::set<T, C, A>> {};

/// Map keys as JSON object keys: a channel's wire text, an integer in decimal.
template <class Key>
struct KeyCodec;
template <>
struct KeyCodec<Data::Channels::Guid> {
    static std::string Write(const Data::Channels::Guid& key) { return key.ToString(); }
    static Data::Channels::Guid Read(const std::string& text, Reader& reader);
};
template <>
struct KeyCodec<std::int32_t> {
    static std::string Write(std::int32_t key) { return std::to_string(key); }
    static std::int32_t Read(const std::string& text, Reader& reader);
};

/// Maps are objects keyed by the key's text.
template <class K, class V, class C, class A>
struct Codec<std::map<K, V, C, A>> {
    static void Write(const std::map<K, V, C, A>& value, Value& json) {
        json = Value::object();
        for (const auto& [key, element] : value) {
            Codec<V>::Write(element, json[KeyCodec<K>::Write(key)]);
        }
    }
    static void Read(const Value& json, std::map<K, V, C, A>& value, Reader& reader) {
        reader.Expect(json.is_object(), "an object", json);
        value.clear();
        for (const auto& [text, element] : json.items()) {
            Reader::Scope scope(reader, "[" + Value(text).dump() + "]");
            K key = KeyCodec<K>::Read(text, reader);
            Codec<V>::Read(element, value[key], reader);
        }
    }
};

/// Parses a whole JSON text; a syntax error becomes a `JsonError` of kind Syntax.
Value Parse(std::string_view text);

/// The text of `json`, compact for a negative `indent`. Bytes that are not UTF-8 are written as
/// U+FFFD.
std::string Dump(const Value& json, int indent);

}  // namespace Korvo::Plexis::Tessel::Json::Detail

/// The members of `Type` that a JSON object must give, by name.
#define KORVO_JSON_REQUIRED(Type, ...)                        \
    template <>                                               \
    struct Required<Type> {                                   \
        static constexpr const char* names[] = {__VA_ARGS__}; \
    }

#pragma once

// The rows shared by the command, reply and notification tables of the JSON form: a name, the
// class it stands for, and the two directions for that class.

#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

#include "json/JsonCodec.h"

namespace Korvo::Plexis::Tessel::Json::Detail {

/// One class of a family; `Result` is what reading gives (an owning pointer to the family's base).
template <class Result>
struct Row {
    std::string_view name;
    const std::type_info* type;
    /// Writes the object at `object`, which is of exactly the row's class.
    void (*write)(const void* object, Value& json);
    Result (*read)(const Value& json, Reader& reader);
};

template <class T>
void WriteObject(const void* object, Value& json) {
    Codec<T>::Write(*static_cast<const T*>(object), json);
}

/// Reads a new `T` into the family's owning pointer `Pointer`.
template <class T, class Pointer>
Pointer ReadObject(const Value& json, Reader& reader) {
    auto object = std::make_unique<T>();
    Codec<T>::Read(json, *object, reader);
    return Pointer(std::move(object));
}

template <class Result, std::size_t Count>
const Row<Result>* FindByName(const Row<Result> (&rows)[Count], std::string_view name) {
    for (const auto& row : rows) {
        if (row.name == name) {
            return &row;
        }
    }
    return nullptr;
}

/// The row of the dynamic class of `object`; throws `std::invalid_argument` naming `family`
/// when there is none. `Base` must be polymorphic.
template <class Result, std::size_t Count, class Base>
const Row<Result>& FindByType(const Row<Result> (&rows)[Count], const Base& object,
                              const char* family) {
    for (const auto& row : rows) {
        if (*row.type == typeid(object)) {
            return row;
        }
    }
    throw std::invalid_argument(std::string("not a ") + family + " class of the JSON form: " +
                                typeid(object).name());
}

/// The JSON text of `object` through its row, with "type" first when `typed`.
template <class Result, class Base>
std::string WriteWithRow(const Row<Result>& row, const Base& object, bool typed, int indent) {
    Value body;
    // The row's class is the dynamic class of `object`: the most derived object is one of it.
    row.write(dynamic_cast<const void*>(&object), body);
    if (!typed) {
        return Dump(body, indent);
    }
    Value json = Value::object();
    json["type"] = std::string(row.name);
    json.update(body);
    return Dump(json, indent);
}

/// The names of every row.
template <class Result, std::size_t Count>
std::vector<std::string> Names(const Row<Result> (&rows)[Count]) {
    std::vector<std::string> names;
    for (const auto& row : rows) {
        names.emplace_back(row.name);
    }
    return names;
}

/// Reads a text whose "type" names its row in `rows` (a `family` type name), the rest being the
/// row class's fields. Stores the row's name in `typeName` when given.
template <class Result, std::size_t Count>
Result ReadTyped(const Row<Result> (&rows)[Count], std::string_view text, const char* family,
                 std::string* typeName = nullptr) {
    Value json = Parse(text);
    Reader reader;
    reader.Expect(json.is_object(), "an object", json);
    std::string name;
    ReadMember(json, "type", name, reader, true);
    const auto* row = FindByName(rows, name);
    if (row == nullptr) {
        Reader::Scope scope(reader, "type");
        reader.Fail(Kind::UnknownName, "unknown " + std::string(family) + " type " +
                                           Value(name).dump());
    }
    json.erase("type");
    if (typeName != nullptr) {
        *typeName = name;
    }
    return row->read(json, reader);
}

}  // namespace Korvo::Plexis::Tessel::Json::Detail

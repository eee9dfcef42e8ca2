#pragma once

// Field-by-field conversion between domain values and generated wire records, in both directions,
// derived from the two field lists: the domain class's (`KORVO_FIELDS`) and the wire record's
// (generated from its definition, `RecordFields`). Fields are matched by wire name.
//
// How a field travels follows from its two sides:
// - Always: a plain domain value and a required or default wire field; written on every encoding.
// - Optional: a `std::optional` domain value and an optional wire field; written only when set.
// - Present: a plain domain value and an optional wire field: encoding always sets it, and an
//   absent field decodes to the domain default.
// Decoding walks the wire record as an rvalue: its strings and containers are moved, not copied.
//
// Values that are neither the same type on both sides, a container nor a listed class convert
// through a `Leaf` (identifiers, channels, load boundaries, and the records whose shape differs
// on the two sides); a `Leaf` also takes precedence over the field lists.
//
// Failures carry a path ("GetChannelsCommandReply.playerStates: ...") so that a person can see
// which field of which record went wrong.

#include <cstddef>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include <Korvo/Common/Serialization/ConversionResult.h>
#include <Korvo/Common/Serialization/Thrift/RecordFields.h>

#include "descriptors/Descriptors.h"

namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping {

namespace Descriptors = ::Korvo::Plexis::Data::FieldList;
using Common::Serialization::ConversionResult;
using Common::Serialization::Thrift::Fields::Presence;
using Common::Serialization::Thrift::Fields::RecordFields;
using Descriptors::IsMap;
using Descriptors::IsOptional;
using Descriptors::IsSet;
using Descriptors::IsVector;

/// Conversion of one value whose two sides do not follow from field lists; specialised where
/// needed with `ToWire(const Domain&, Wire&)` and `FromWire(const Wire&, Domain&)`.
template <class Domain, class Wire, class Enable = void>
struct Leaf {};

template <class Domain, class Wire, class = void>
struct HasLeaf : std::false_type {};
template <class Domain, class Wire>
struct HasLeaf<Domain, Wire, std::void_t<decltype(&Leaf<Domain, Wire>::ToWire)>> : std::true_type {
};

template <class Wire, class = void>
struct HasRecordFields : std::false_type {};
template <class Wire>
struct HasRecordFields<Wire, std::void_t<typename RecordFields<Wire>::List>> : std::true_type {};

/// Whether a domain value of type `Domain` converts to and from a wire value of type `Wire`.
template <class Domain, class Wire>
constexpr bool Convertible() {
    if constexpr (std::is_same_v<Domain, Wire> || HasLeaf<Domain, Wire>::value) {
        return true;
    } else if constexpr ((IsVector<Domain>::value && IsVector<Wire>::value) ||
                         (IsSet<Domain>::value && IsSet<Wire>::value)) {
        return Convertible<typename Domain::value_type, typename Wire::value_type>();
    } else if constexpr (IsMap<Domain>::value && IsMap<Wire>::value) {
        return Convertible<typename Domain::key_type, typename Wire::key_type>() &&
               Convertible<typename Domain::mapped_type, typename Wire::mapped_type>();
    } else {
        return Descriptors::HasDescriptor<Domain>::value && HasRecordFields<Wire>::value;
    }
}

/// Puts `name` (a field name or "[index]") in front of a failure's path. Leaf failures start
/// with ": " and the text; each enclosing field or element adds its part, giving for example
/// "clips[3].name: the text".
inline ConversionResult Prefixed(const char* name, ConversionResult result) {
    if (!result.success) {
        const char first = result.message.empty() ? ':' : result.message.front();
        result.message =
            std::string(name) + (first == ':' || first == '[' ? "" : ".") + result.message;
    }
    return result;
}

inline ConversionResult Prefixed(const std::string& name, ConversionResult result) {
    return Prefixed(name.c_str(), std::move(result));
}

/// A leaf failure: ": " and the text.
inline ConversionResult LeafFailure(const std::string& text) {
    return ConversionResult::Failure(": " + text);
}

/// The value type of an optional, any other type itself.
template <class T>
struct Unwrapped {
    using type = T;
};
template <class T>
struct Unwrapped<std::optional<T>> {
    using type = T;
};

namespace Detail {

constexpr bool SameName(const char* left, const char* right) {
    while (*left != '\0' && *left == *right) {
        ++left;
        ++right;
    }
    return *left == *right;
}

/// The index of the wire field called `name` in `Wire`'s list; the list's size when none is.
template <class Wire, std::size_t... I>
constexpr std::size_t WireIndex(const char* name, std::index_sequence<I...>) {
    using List = typename RecordFields<Wire>::List;
    std::size_t found = sizeof...(I);
    ((found == sizeof...(I) && SameName(std::tuple_element_t<I, List>::name, name) ? found = I : 0),
     ...);
    return found;
}
template <class Wire>
constexpr std::size_t WireIndex(const char* name) {
    using List = typename RecordFields<Wire>::List;
    return WireIndex<Wire>(name, std::make_index_sequence<std::tuple_size_v<List>>());
}

/// Whether `Domain`'s list (through the bases it shares a wire record with) names `wireName`.
template <class Domain>
constexpr bool Names(const char* wireName) {
    return std::apply(
        [&](const auto&... entry) {
            return ([&](const auto& one) {
                using Entry = std::decay_t<decltype(one)>;
                if constexpr (Descriptors::IsBaseEntry<Entry>::value) {
                    return one.wireName == nullptr ? Names<typename Entry::Type>(wireName)
                                                   : SameName(one.wireName, wireName);
                } else {
                    return one.wireName != nullptr && SameName(one.wireName, wireName);
                }
            }(entry) ||
                    ...);
        },
        Domain::Descriptor());
}

/// `value` as an rvalue when the object it belongs to (`Owner`) was given as one.
template <class Owner, class T>
constexpr decltype(auto) Pass(T& value) {
    if constexpr (std::is_lvalue_reference_v<Owner>) {
        return static_cast<const T&>(value);
    } else {
        return std::move(value);
    }
}

}  // namespace Detail

enum class Direction { ToWire, FromWire };

template <Direction Way, class Source, class Target>
ConversionResult Convert(Source&& source, Target& target);

/// The fields of `Domain`'s list, against the wire record `Wire`: `domain` is a `const Domain&`
/// when encoding, a `Domain&` when decoding; `wire` the other way round (or an rvalue, whose
/// values are then moved).
template <Direction Way, class Domain, class Wire, class DomainRef, class WireRef>
ConversionResult ConvertFields(DomainRef&& domain, WireRef&& wire);

template <Direction Way, class Domain, class Wire, std::size_t K, class DomainRef, class WireRef>
ConversionResult ConvertEntry(DomainRef&& domain, WireRef&& wire) {
    constexpr auto entry = Descriptors::kEntry<Domain, K>;
    using Entry = std::decay_t<decltype(entry)>;
    if constexpr (entry.wireName == nullptr) {
        if constexpr (Descriptors::IsBaseEntry<Entry>::value) {
            // The base's fields are this record's own.
            using Base = typename Entry::Type;
            using BaseRef = std::conditional_t<Way == Direction::ToWire, const Base&, Base&>;
            return ConvertFields<Way, Base, Wire>(static_cast<BaseRef>(domain),
                                                  std::forward<WireRef>(wire));
        } else {
            return {};  // kept on this side only
        }
    } else {
        using List = typename RecordFields<Wire>::List;
        constexpr std::size_t index = Detail::WireIndex<Wire>(entry.wireName);
        static_assert(index < std::tuple_size_v<List>,
                      "a field of the domain class's list has no field of its wire name in the "
                      "wire record (see `Domain`, `Wire` and entry `K` below)");
        using Field = std::tuple_element_t<index, List>;
        using WireValue = typename Field::Type;
        using DomainValue = typename Entry::Type;
        constexpr bool optional = IsOptional<DomainValue>::value;
        using Plain = typename Unwrapped<DomainValue>::type;
        static_assert(!optional || Field::presence == Presence::Optional,
                      "an optional domain member needs an optional wire field");
        static_assert(Convertible<Plain, WireValue>(),
                      "a domain member's type cannot convert to its wire field's type (see "
                      "`Domain`, `Wire` and entry `K` below)");

        // The member itself, or for a base the object seen as that base.
        auto&& value = [&]() -> decltype(auto) {
            if constexpr (Descriptors::IsBaseEntry<Entry>::value) {
                if constexpr (Way == Direction::ToWire) {
                    return static_cast<const Plain&>(domain);
                } else {
                    return static_cast<Plain&>(domain);
                }
            } else {
                return (domain.*(Descriptors::kEntry<Domain, K>.pointer));
            }
        }();
        if constexpr (Way == Direction::ToWire) {
            if constexpr (optional) {
                Field::MarkSet(wire, value.has_value());
                if (!value) {
                    return {};
                }
                return Prefixed(entry.wireName, Convert<Way>(*value, Field::Get(wire)));
            } else {
                Field::MarkSet(wire, true);
                return Prefixed(entry.wireName, Convert<Way>(value, Field::Get(wire)));
            }
        } else {
            if constexpr (Field::presence == Presence::Optional) {
                if (!Field::IsSet(wire)) {
                    if constexpr (optional) {
                        value.reset();
                    }
                    return {};
                }
            }
            auto& source = Field::Get(wire);
            if constexpr (optional) {
                return Prefixed(entry.wireName,
                                Convert<Way>(Detail::Pass<WireRef>(source), value.emplace()));
            } else {
                return Prefixed(entry.wireName, Convert<Way>(Detail::Pass<WireRef>(source), value));
            }
        }
    }
}

template <Direction Way, class Domain, class Wire, class DomainRef, class WireRef, std::size_t... K>
ConversionResult ConvertEntries(DomainRef&& domain, WireRef&& wire, std::index_sequence<K...>) {
    ConversionResult result;
    ((result.success
          ? (result = ConvertEntry<Way, Domain, Wire, K>(domain, static_cast<WireRef&&>(wire)), 0)
          : 0),
     ...);
    return result;
}

/// Every field of the wire record is named by the domain list: a field left out would be lost.
template <class Domain, class Wire, std::size_t... I>
constexpr bool NamesEveryWireField(std::index_sequence<I...>) {
    using List = typename RecordFields<Wire>::List;
    return (Detail::Names<Domain>(std::tuple_element_t<I, List>::name) && ...);
}

template <Direction Way, class Domain, class Wire, class DomainRef, class WireRef>
ConversionResult ConvertFields(DomainRef&& domain, WireRef&& wire) {
    return ConvertEntries<Way, Domain, Wire>(
        domain, std::forward<WireRef>(wire),
        std::make_index_sequence<Descriptors::kEntryCount<Domain>>());
}

/// A whole record pair: checks that the two lists match, then walks them.
template <Direction Way, class Domain, class Wire, class DomainRef, class WireRef>
ConversionResult ConvertRecord(DomainRef&& domain, WireRef&& wire) {
    using List = typename RecordFields<Wire>::List;
    static_assert(
        NamesEveryWireField<Domain, Wire>(std::make_index_sequence<std::tuple_size_v<List>>()),
        "a field of the wire record is missing from the domain class's list (see `Domain` and "
        "`Wire` below)");
    return ConvertFields<Way, Domain, Wire>(domain, std::forward<WireRef>(wire));
}

/// One value in either direction: identical types are copied (moved when decoding), containers
/// element by element (the same shape on both sides), a pair with a leaf through it, and records
/// through their field lists.
template <Direction Way, class Source, class Target>
ConversionResult Convert(Source&& source, Target& target) {
    using S = std::decay_t<Source>;
    if constexpr (std::is_same_v<S, Target>) {
        target = std::forward<Source>(source);
        return {};
    } else if constexpr (IsVector<S>::value) {
        // When encoding, elements already there are overwritten whole (every field of a record
        // is), keeping the room their own texts and lists have.
        if constexpr (Way == Direction::FromWire) {
            target.clear();
        }
        target.resize(source.size());
        for (std::size_t index = 0; index < source.size(); ++index) {
            auto result = Convert<Way>(Detail::Pass<Source>(source[index]), target[index]);
            if (!result.success) {
                return Prefixed("[" + std::to_string(index) + "]", std::move(result));
            }
        }
        return {};
    } else if constexpr (IsSet<S>::value) {
        target.clear();
        for (const auto& element : source) {
            typename Target::value_type converted;
            auto result = Convert<Way>(element, converted);
            if (!result.success) {
                return Prefixed("[]", std::move(result));
            }
            target.insert(target.end(), std::move(converted));
        }
        return {};
    } else if constexpr (IsMap<S>::value) {
        target.clear();
        for (auto& [key, value] : source) {
            typename Target::key_type convertedKey;
            auto result = Convert<Way>(key, convertedKey);
            if (!result.success) {
                return Prefixed("[]", std::move(result));
            }
            typename Target::mapped_type convertedValue;
            result = Convert<Way>(Detail::Pass<Source>(value), convertedValue);
            if (!result.success) {
                return Prefixed("[]", std::move(result));
            }
            target.insert_or_assign(std::move(convertedKey), std::move(convertedValue));
        }
        return {};
    } else if constexpr (Way == Direction::ToWire) {
        if constexpr (HasLeaf<S, Target>::value) {
            return Leaf<S, Target>::ToWire(source, target);
        } else {
            return ConvertRecord<Way, S, Target>(source, target);
        }
    } else {
        if constexpr (HasLeaf<Target, S>::value) {
            return Leaf<Target, S>::FromWire(source, target);
        } else {
            return ConvertRecord<Way, Target, S>(target, std::forward<Source>(source));
        }
    }
}

template <class Domain, class Wire>
ConversionResult ToWire(const Domain& source, Wire& target) {
    return Convert<Direction::ToWire>(source, target);
}

/// Decodes `source`, moving its strings and containers out when it is an rvalue.
template <class Domain, class WireRef>
ConversionResult FromWire(WireRef&& source, Domain& target) {
    return Convert<Direction::FromWire>(std::forward<WireRef>(source), target);
}

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping

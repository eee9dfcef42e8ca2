#pragma once

// Field-by-field conversion between domain values and generated wire records, in both directions,
// driven by one table per record pair (`Table<Domain, Wire>`). A table lists each field once;
// the same table serves encoding (domain to wire) and decoding (wire to domain).
//
// Field kinds, by how the wire marks presence:
// - Always: written on every encoding; both sides hold a plain value.
// - Optional: written only when set; the domain holds `std::optional<T>`, the wire a value and
//   its set-flag.
// - Present: optional on the wire for forward compatibility, but a plain value in the domain: an
//   absent field decodes to the domain default, and encoding always sets it.
//
// Failures carry a path ("GetChannelsCommandReply.playerStates: ...") so that a person can see
// which field of which record went wrong.

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include <Korvo/Common/Serialization/ConversionResult.h>

namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping {

using Common::Serialization::ConversionResult;

/// The table of a record pair; specialised for every pair the converters know.
template <class Domain, class Wire>
struct Table;

/// Conversion of one leaf value that is neither identical on both sides, a container nor a
/// mapped record (identifiers); specialised where needed.
template <class Domain, class Wire, class Enable = void>
struct Leaf;

template <class T>
struct IsVector : std::false_type {};
template <class T, class A>
struct IsVector<std::vector<T, A>> : std::true_type {};
template <class T>
struct IsSet : std::false_type {};
template <class T, class C, class A>
struct IsSet<std::set<T, C, A>> : std::true_type {};
template <class T>
struct IsMap : std::false_type {};
template <class K, class V, class C, class A>
struct IsMap<std::map<K, V, C, A>> : std::true_type {};

template <class Domain, class Wire, class = void>
struct HasTable : std::false_type {};
template <class Domain, class Wire>
struct HasTable<Domain, Wire, std::void_t<decltype(Table<Domain, Wire>::Fields())>>
    : std::true_type {};

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

/// A leaf failure: ": " and the text.
inline ConversionResult LeafFailure(const std::string& text) {
    return ConversionResult::Failure(": " + text);
}

inline ConversionResult Prefixed(const std::string& name, ConversionResult result) {
    return Prefixed(name.c_str(), std::move(result));
}

enum class Direction { ToWire, FromWire };

template <class Domain, class Wire>
ConversionResult ToWire(const Domain& source, Wire& target);
template <class Domain, class Wire>
ConversionResult FromWire(const Wire& source, Domain& target);

/// Walks a record's table, stopping at the first failing field.
template <class Domain, class Wire, class Visit>
ConversionResult ForEachField(Visit&& visit) {
    ConversionResult result;
    std::apply(
        [&](const auto&... field) { ((result.success ? (result = visit(field), 0) : 0), ...); },
        Table<Domain, Wire>::Fields());
    return result;
}

/// One value in either direction: identical types are copied, containers element by element
/// (the same shape on both sides), records through their table, anything else through its leaf.
template <Direction Way, class Source, class Target>
ConversionResult Convert(const Source& source, Target& target) {
    if constexpr (std::is_same_v<Source, Target>) {
        target = source;
        return {};
    } else if constexpr (IsVector<Source>::value) {
        target.clear();
        target.resize(source.size());
        for (std::size_t index = 0; index < source.size(); ++index) {
            auto result = Convert<Way>(source[index], target[index]);
            if (!result.success) {
                return Prefixed("[" + std::to_string(index) + "]", std::move(result));
            }
        }
        return {};
    } else if constexpr (IsSet<Source>::value) {
        target.clear();
        for (const auto& element : source) {
            typename Target::value_type converted;
            auto result = Convert<Way>(element, converted);
            if (!result.success) {
                return Prefixed("[]", std::move(result));
            }
            target.insert(std::move(converted));
        }
        return {};
    } else if constexpr (IsMap<Source>::value) {
        target.clear();
        for (const auto& [key, value] : source) {
            typename Target::key_type convertedKey;
            typename Target::mapped_type convertedValue;
            auto result = Convert<Way>(key, convertedKey);
            if (result.success) {
                result = Convert<Way>(value, convertedValue);
            }
            if (!result.success) {
                return Prefixed("[]", std::move(result));
            }
            target.insert_or_assign(std::move(convertedKey), std::move(convertedValue));
        }
        return {};
    } else if constexpr (Way == Direction::ToWire) {
        if constexpr (HasTable<Source, Target>::value) {
            return ForEachField<Source, Target>(
                [&](const auto& field) { return field.ToWire(source, target); });
        } else {
            return Leaf<Source, Target>::ToWire(source, target);
        }
    } else {
        if constexpr (HasTable<Target, Source>::value) {
            return ForEachField<Target, Source>(
                [&](const auto& field) { return field.FromWire(source, target); });
        } else {
            return Leaf<Target, Source>::FromWire(source, target);
        }
    }
}

template <class Domain, class Wire>
ConversionResult ToWire(const Domain& source, Wire& target) {
    return Convert<Direction::ToWire>(source, target);
}

template <class Domain, class Wire>
ConversionResult FromWire(const Wire& source, Domain& target) {
    return Convert<Direction::FromWire>(source, target);
}

/// A field written on every encoding.
template <class DomainMember, class WireMember>
struct Always {
    const char* name;
    DomainMember domain;
    WireMember wire;

    template <class Domain, class Wire>
    ConversionResult ToWire(const Domain& source, Wire& target) const {
        return Prefixed(name, Mapping::ToWire(source.*domain, target.*wire));
    }
    template <class Wire, class Domain>
    ConversionResult FromWire(const Wire& source, Domain& target) const {
        return Prefixed(name, Mapping::FromWire(source.*wire, target.*domain));
    }
};

/// A field written only when set: `std::optional` in the domain, value and set-flag on the wire.
template <class DomainMember, class WireMember, class IsSet, class MarkSet>
struct Optional {
    const char* name;
    DomainMember domain;
    WireMember wire;
    IsSet isSet;
    MarkSet markSet;

    template <class Domain, class Wire>
    ConversionResult ToWire(const Domain& source, Wire& target) const {
        const auto& value = source.*domain;
        markSet(target, value.has_value());
        if (!value) {
            return {};
        }
        return Prefixed(name, Mapping::ToWire(*value, target.*wire));
    }
    template <class Wire, class Domain>
    ConversionResult FromWire(const Wire& source, Domain& target) const {
        auto& value = target.*domain;
        if (!isSet(source)) {
            value.reset();
            return {};
        }
        value.emplace();
        return Prefixed(name, Mapping::FromWire(source.*wire, *value));
    }
};

/// A field optional on the wire but plain in the domain: absent decodes to the default.
template <class DomainMember, class WireMember, class IsSet, class MarkSet>
struct Present {
    const char* name;
    DomainMember domain;
    WireMember wire;
    IsSet isSet;
    MarkSet markSet;

    template <class Domain, class Wire>
    ConversionResult ToWire(const Domain& source, Wire& target) const {
        markSet(target, true);
        return Prefixed(name, Mapping::ToWire(source.*domain, target.*wire));
    }
    template <class Wire, class Domain>
    ConversionResult FromWire(const Wire& source, Domain& target) const {
        if (!isSet(source)) {
            return {};
        }
        return Prefixed(name, Mapping::FromWire(source.*wire, target.*domain));
    }
};

/// The part of a domain object that its base class `DomainBase` holds, carried on the wire as one
/// nested record (an event's common part, for example). `isSet` and `markSet` are null for a
/// required field, which is always present.
template <class DomainBase, class WireMember, class IsSet, class MarkSet>
struct BasePart {
    const char* name;
    WireMember wire;
    IsSet isSet;
    MarkSet markSet;

    template <class Domain, class Wire>
    ConversionResult ToWire(const Domain& source, Wire& target) const {
        if constexpr (!std::is_same_v<MarkSet, std::nullptr_t>) {
            markSet(target, true);
        }
        return Prefixed(name,
                        Mapping::ToWire(static_cast<const DomainBase&>(source), target.*wire));
    }
    template <class Wire, class Domain>
    ConversionResult FromWire(const Wire& source, Domain& target) const {
        if constexpr (!std::is_same_v<IsSet, std::nullptr_t>) {
            if (!isSet(source)) {
                return {};
            }
        }
        return Prefixed(name, Mapping::FromWire(source.*wire, static_cast<DomainBase&>(target)));
    }
};

template <class DomainBase, class WireMember, class IsSet, class MarkSet>
BasePart<DomainBase, WireMember, IsSet, MarkSet> MakeBasePart(const char* name, WireMember wire,
                                                              IsSet isSet, MarkSet markSet) {
    return {name, wire, isSet, markSet};
}

template <class DomainMember, class WireMember>
Always(const char*, DomainMember, WireMember) -> Always<DomainMember, WireMember>;
template <class D, class W, class I, class M>
Optional(const char*, D, W, I, M) -> Optional<D, W, I, M>;
template <class D, class W, class I, class M>
Present(const char*, D, W, I, M) -> Present<D, W, I, M>;

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping

// Rows of a table, inside a `Mapping` specialisation that defines `D` (domain) and `W` (wire).
// The name is written once; the `_AS` forms map a domain member to a wire member of another name.
#define KORVO_ALWAYS_AS(domainMember, wireMember)     \
    Always {                                          \
#wireMember, &D::domainMember, &W::wireMember \
    }
#define KORVO_ALWAYS(member) KORVO_ALWAYS_AS(member, member)
#define KORVO_ISSET_ACCESSORS(wireMember)                                     \
    [](const W& wire) { return static_cast<bool>(wire.__isset.wireMember); }, \
        [](W& wire, bool set) { wire.__isset.wireMember = set; }
#define KORVO_OPTIONAL(member)                                         \
    Optional {                                                         \
#member, &D::member, &W::member, KORVO_ISSET_ACCESSORS(member) \
    }
#define KORVO_PRESENT_AS(domainMember, wireMember)                                       \
    Present {                                                                            \
#wireMember, &D::domainMember, &W::wireMember, KORVO_ISSET_ACCESSORS(wireMember) \
    }
#define KORVO_PRESENT(member) KORVO_PRESENT_AS(member, member)
#define KORVO_BASE_PRESENT(DomainBase, wireMember) \
    MakeBasePart<DomainBase>(#wireMember, &W::wireMember, KORVO_ISSET_ACCESSORS(wireMember))
#define KORVO_BASE_REQUIRED(DomainBase, wireMember) \
    MakeBasePart<DomainBase>(#wireMember, &W::wireMember, nullptr, nullptr)

// clang-format off
/// Declares the table of `Domain` and `Wire`; the rows follow, then KORVO_END_MAPPING.
#define KORVO_MAPPING(Domain, Wire)      \
    template <>                          \
    struct Table<Domain, Wire> {       \
        using D = Domain;                \
        using W = Wire;                  \
        static auto Fields() { return std::make_tuple(
#define KORVO_END_MAPPING \
    ); }                  \
    }
// clang-format on

#pragma once

// What the wire conversion, the JSON form and the test samples share about the classes' field
// lists (<Korvo/Plexis/Data/FieldList.h>): container traits, and walks over a list with the bases
// it names.

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Data::FieldList {

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
template <class T>
struct IsOptional : std::false_type {};
template <class T>
struct IsOptional<std::optional<T>> : std::true_type {};

template <class T, class = void>
struct HasDescriptor : std::false_type {};
template <class T>
struct HasDescriptor<T, std::void_t<decltype(T::Descriptor())>> : std::true_type {};

template <class Entry>
struct IsBaseEntry : std::false_type {};
template <class Base>
struct IsBaseEntry<BaseFields<Base>> : std::true_type {};

/// The number of entries in `T`'s list.
template <class T>
inline constexpr std::size_t kEntryCount = std::tuple_size_v<decltype(T::Descriptor())>;

/// Entry `K` of `T`'s list, as a constant.
template <class T, std::size_t K>
inline constexpr auto kEntry = std::get<K>(T::Descriptor());

template <class T, class Visit, std::size_t... K>
constexpr void ForEachIndexOf(Visit& visit, std::index_sequence<K...>) {
    (visit(std::integral_constant<std::size_t, K>()), ...);
}

/// Calls `visit(std::integral_constant<std::size_t, K>())` for every entry `K` of `T`'s list.
template <class T, class Visit>
constexpr void ForEachIndex(Visit&& visit) {
    ForEachIndexOf<T>(visit, std::make_index_sequence<kEntryCount<T>>());
}

/// Calls `visit(entry)` for every member of `T`'s list, those of its bases first, in list order.
template <class T, class Visit>
void ForEachMember(Visit&& visit) {
    std::apply(
        [&](const auto&... entry) {
            (
                [&](const auto& one) {
                    using Entry = std::decay_t<decltype(one)>;
                    if constexpr (IsBaseEntry<Entry>::value) {
                        ForEachMember<typename Entry::Type>(visit);
                    } else {
                        visit(one);
                    }
                }(entry),
                ...);
        },
        T::Descriptor());
}

}  // namespace Korvo::Plexis::Data::FieldList

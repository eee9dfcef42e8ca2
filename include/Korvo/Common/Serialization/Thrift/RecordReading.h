#pragma once

// What the generated record readers call to fill a container (the build routes them here, see
// cmake/KorvoRecordReading.cmake). Not meant to be called by hand.
//
// A protocol with a member `ChargeDecoded(std::uint64_t bytes)` (the bounded protocol that
// reads received frames) is charged the in-memory size of every element before it is allocated,
// and may refuse it by throwing; any other protocol reads as the stock generated code does.

#include <cstdint>
#include <utility>

namespace Korvo::Common::Serialization::Thrift::Reading {

/// What one entry of a node-based container (a set or map entry) costs beside its value: the
/// node's colour and its three links.
inline constexpr std::uint64_t kNodeOverhead = 4 * sizeof(void*);

template <class Protocol>
auto Charge(Protocol& protocol, std::uint64_t bytes, int)
    -> decltype(protocol.ChargeDecoded(bytes), void()) {
    protocol.ChargeDecoded(bytes);
}

template <class Protocol>
void Charge(Protocol&, std::uint64_t, long) {}

/// Resizes a list to `count` default elements, charged first.
template <class Protocol, class List>
void Resize(Protocol& protocol, List& list, std::uint32_t count) {
    Charge(protocol, std::uint64_t{count} * sizeof(typename List::value_type), 0);
    list.resize(count);
}

/// Inserts a read element into a set, charged first.
template <class Protocol, class Set, class Element>
void Insert(Protocol& protocol, Set& set, Element&& element) {
    Charge(protocol, kNodeOverhead + sizeof(typename Set::value_type), 0);
    set.insert(std::forward<Element>(element));
}

/// The entry of a map under `key`, charged and reset to a default value, for the value that
/// follows on the wire to be read into: a key read twice keeps the value read last, whole.
template <class Protocol, class Map, class Key>
typename Map::mapped_type& FreshEntry(Protocol& protocol, Map& map, const Key& key) {
    Charge(protocol, kNodeOverhead + sizeof(typename Map::value_type), 0);
    auto& value = map[key];
    value = typename Map::mapped_type();
    return value;
}

}  // namespace Korvo::Common::Serialization::Thrift::Reading

#pragma once

// Domain values with every member set to something other than its default, for round-trip tests:
// a field that a conversion forgets or swaps shows up as a difference.

#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include <Korvo/Plexis/Data/Channels/LoadBoundary.h>
#include <Korvo/Plexis/Data/Channels/PlayerState.h>
#include <Korvo/Plexis/Data/Channels/RecorderState.h>
#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/Clips/Groups/AnglesGroup.h>
#include <Korvo/Plexis/Data/Clips/Train.h>
#include <Korvo/Plexis/Data/OperationStatus.h>
#include <Korvo/Plexis/Data/Sequences/Playlist.h>
#include <Korvo/Plexis/Data/Servers/ServerInfo.h>
#include <Korvo/Plexis/Multiviewer/PlayerDataOverrides.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ChannelCommandReply.h>

#include "descriptors/Descriptors.h"

namespace Korvo::Testing::Samples {

namespace Data = Plexis::Data;

/// Values derived from `seed`, so that two samples with different seeds differ in every member.
Data::Clips::Clip Clip(int seed = 1);
Data::Sequences::Playlist Playlist(int seed = 1);
Data::Channels::PlayerState PlayerState(int seed = 1);
Data::Channels::RecorderState RecorderState(int seed = 1);
Data::Servers::ServerInfo Server(int seed = 1);
Data::Clips::Train Train(int seed = 1);
Data::Clips::Groups::AnglesGroup AnglesGroup(int seed = 1);
Plexis::Multiviewer::PlayerDataOverrides Overrides(const Data::Channels::Guid& player,
                                                   int seed = 1);
Data::Channels::LoadBoundary Boundary(int seed = 1);
Data::OperationStatus Status(int seed = 1);

namespace Fill {

using Plexis::Data::FieldList::IsMap;
using Plexis::Data::FieldList::IsSet;
using Plexis::Data::FieldList::IsVector;
template <class T>
struct IsOptional : std::false_type {};
template <class T>
struct IsOptional<std::optional<T>> : std::true_type {};

/// Sets `value` and everything in it from `seed`, which moves on at every leaf so that no two
/// leaves share a value. Domain values with a sample above take it; containers get two elements.
template <class T>
void Fill(T& value, int& seed) {
    namespace Commands = Plexis::Tessel::HighLevelOperations::Commands;
    if constexpr (std::is_same_v<T, bool>) {
        value = true;
    } else if constexpr (std::is_integral_v<T>) {
        value = static_cast<T>(100 + ++seed);  // never one of the classes' defaults
    } else if constexpr (std::is_same_v<T, std::string>) {
        value = "text-" + std::to_string(++seed);
    } else if constexpr (std::is_base_of_v<Data::Guid, T>) {
        value = T("guid-" + std::to_string(++seed));
    } else if constexpr (std::is_same_v<T, Data::Channels::Guid>) {
        ++seed;
        value = Data::Channels::Guid(
            seed % 2 ? Data::Channels::Guid::Player : Data::Channels::Guid::Recorder, seed % 5 + 1,
            static_cast<unsigned>(seed % 8));
    } else if constexpr (std::is_same_v<T, Data::Clips::AsciiOrUtf16String>) {
        value = {"text-" + std::to_string(++seed), false};
    } else if constexpr (std::is_same_v<T, Data::Clips::Clip>) {
        value = Clip(++seed);
    } else if constexpr (std::is_same_v<T, Data::Sequences::Playlist>) {
        value = Playlist(++seed);
    } else if constexpr (std::is_same_v<T, Data::Channels::PlayerState>) {
        value = PlayerState(++seed);
    } else if constexpr (std::is_same_v<T, Data::Channels::RecorderState>) {
        value = RecorderState(++seed);
    } else if constexpr (std::is_same_v<T, Data::Servers::ServerInfo>) {
        value = Server(++seed);
    } else if constexpr (std::is_same_v<T, Data::Clips::Train>) {
        value = Train(++seed);
    } else if constexpr (std::is_same_v<T, Data::Clips::Groups::AnglesGroup>) {
        value = AnglesGroup(++seed);
    } else if constexpr (std::is_same_v<T, Plexis::Multiviewer::PlayerDataOverrides>) {
        ++seed;
        value = Overrides(Data::Channels::Guid::PlayerOf(1, static_cast<unsigned>(seed)), seed);
    } else if constexpr (std::is_same_v<T, Data::Channels::LoadBoundary>) {
        value = Boundary(++seed);
    } else if constexpr (std::is_same_v<T, Data::OperationStatus>) {
        value = Status(++seed);
    } else if constexpr (IsOptional<T>::value) {
        Fill(value.emplace(), seed);
    } else if constexpr (IsVector<T>::value) {
        value.resize(2);
        for (auto& element : value) {
            Fill(element, seed);
        }
    } else if constexpr (IsSet<T>::value || IsMap<T>::value) {
        for (int count = 0; count < 2; ++count) {
            typename T::value_type element;
            if constexpr (IsMap<T>::value) {
                Fill(const_cast<typename T::key_type&>(element.first), seed);
                Fill(element.second, seed);
            } else {
                Fill(element, seed);
            }
            value.insert(std::move(element));
        }
    } else if constexpr (std::is_same_v<T, Commands::ChannelCommandReply>) {
        Fill(value.commandGuid, seed);
        for (int count = 0; count < 3; ++count) {
            Commands::ChannelResult result;
            Fill(result, seed);
            value.Add(result);
        }
    } else {
        // Any class that lists its members for equality: fill each of them. The members belong to
        // `value`, which is not const, so writing through the listed references is sound.
        std::apply(
            [&](const auto&... member) {
                (Fill(const_cast<std::decay_t<decltype(member)>&>(member), seed), ...);
            },
            value.Fields());
    }
}

}  // namespace Fill

/// A value of `T` (command parameters, a reply, notification arguments or any domain value) with
/// every member that its `Fields()` lists set, derived from `seed`.
template <class T>
T Filled(int seed = 1) {
    T value;
    int next = seed * 1000;
    Fill::Fill(value, next);
    return value;
}

}  // namespace Korvo::Testing::Samples

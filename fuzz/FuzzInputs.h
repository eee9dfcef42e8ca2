#pragma once

// How the fuzzers read their input, shared with the program that writes their seeds: the first
// byte chooses a name or a record from the lists below (modulo their length), the rest is the
// payload.

#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include <Korvo/Plexis/Tessel/Client/CommandTypes.h>
#include <Korvo/Plexis/Tessel/Client/NotificationTypes.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/AnglesGroups.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Channels.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Clips.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Commands.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Common.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/DataCommands.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Notifications.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Replies.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Sequences.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Servers.h>

namespace Korvo::Fuzzing {

/// Reply type names: the type name of every reply of the protocol, its class name where that
/// differs ("UnknownCommandReply", which names nothing), and each of them behind the "[part]"
/// prefix, accepted or not.
inline const std::vector<std::string>& ReplyTypeNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> plain;
        Plexis::Tessel::Client::ForEachReply([&](auto* reply) {
            using Traits = Plexis::Tessel::Client::ReplyTraits<std::remove_pointer_t<decltype(reply)>>;
            plain.emplace_back(Traits::kName);
            if (Traits::kClassName != Traits::kName) {
                plain.emplace_back(Traits::kClassName);
            }
        });
        std::vector<std::string> all = plain;
        for (const std::string& name : plain) {
            all.push_back("[part]" + name);
        }
        return all;
    }();
    return names;
}

/// Notification headers: every notification type, then two that name none.
inline const std::vector<std::string>& NotificationHeaders() {
    static const std::vector<std::string> headers = [] {
        std::vector<std::string> all;
        Plexis::Tessel::Client::ForEachNotification([&](auto* args) {
            all.emplace_back(
                Plexis::Tessel::Client::NotificationTraits<std::remove_pointer_t<decltype(args)>>::kName);
        });
        all.insert(all.end(), {"", "ServerAddedEventArgs"});
        return all;
    }();
    return headers;
}

/// Every record of idl/, listed by the build.
using AllRecords = std::tuple<
#include "AllRecords.inc"
    >;

/// The index the first byte chooses among `count` entries.
inline std::size_t Choice(std::uint8_t first, std::size_t count) {
    return first % count;
}

/// The first byte that chooses entry `index`.
inline char Chooser(std::size_t index) {
    return static_cast<char>(index);
}

}  // namespace Korvo::Fuzzing

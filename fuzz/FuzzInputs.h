#pragma once

// How the fuzzers read their input, shared with the program that writes their seeds: the first
// byte chooses a name or a record from the lists below (modulo their length), the rest is the
// payload.

#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

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

/// Reply type names: every reply of the protocol, its unknown-command announcement, and each of
/// them behind the "[part]" prefix, accepted or not.
inline const std::vector<std::string>& ReplyTypeNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> plain = {
#define KORVO_FUZZ_REPLY_NAME(Domain, Wire) #Domain,
            KORVO_TESSEL_REPLY_RECORDS(KORVO_FUZZ_REPLY_NAME)
#undef KORVO_FUZZ_REPLY_NAME
                "UnknownCommand"};
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
    static const std::vector<std::string> headers = {
#define KORVO_FUZZ_NOTIFICATION_NAME(Name, Family, Args) #Name,
        KORVO_TESSEL_NOTIFICATIONS(KORVO_FUZZ_NOTIFICATION_NAME)
#undef KORVO_FUZZ_NOTIFICATION_NAME
            "",
        "ServerAddedEventArgs"};
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

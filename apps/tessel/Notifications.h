#pragma once

// Notifications as the tool shows them: a type, a server and a one-line summary for a person, or
// the JSON form for a script.

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include <Korvo/Plexis/Tessel/Client/NotificationClient.h>

namespace Korvo::Plexis::Tessel::Cli {

/// One received notification, described.
struct NotificationLine {
    std::chrono::system_clock::time_point received;
    std::string type;           ///< "PlayerStateChanged", ...
    std::int32_t serverId = 0;  ///< the server it concerns
    std::string summary;        ///< what changed, in a few words
    std::string json;           ///< `Json::NotificationToJson` of its arguments, one line
    std::string createdClip;    ///< for ClipCreationFinished: the new clip's umId; else empty
};

/// "12:34:56.789  PlayerStateChanged      server 1  player:1:0 playing ..." (local time).
std::string FormatLine(const NotificationLine& line);

/// Puts one callback on each of the client's four family lists that describes the notification
/// and hands it to `sink`, on the client's thread. Hold `client.LockHandlers()` when notifications
/// may already flow.
void AttachDescriber(Client::NotificationClient& client,
                     std::function<void(const NotificationLine&)> sink);

}  // namespace Korvo::Plexis::Tessel::Cli

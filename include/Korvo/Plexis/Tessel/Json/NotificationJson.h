#pragma once

// The JSON form of the 17 notification argument classes (docs/json.md): an object whose "type"
// is the notification's type name ("PlayerStateChanged", the same text as on the wire), followed
// by the members of its argument class, inherited ones first.

#include <string>
#include <string_view>
#include <vector>

#include <Korvo/Plexis/Notification/CommandEventArgs.h>
#include <Korvo/Plexis/Tessel/Json/DecodedNotification.h>
#include <Korvo/Plexis/Tessel/Json/JsonError.h>
#include <Korvo/System/EventArgs.h>

namespace Korvo::Plexis::Tessel::Json {

/// The JSON text of a clip or angles-group notification, chosen by the dynamic class of `args`
/// (as a notification client callback receives it); compact when `indent` is negative. Throws
/// `std::invalid_argument` for a class that no notification type is delivered as. Any thread.
std::string NotificationToJson(const Notification::CommandEventArgs& args, int indent = -1);

/// The same for a status notification (clip, channel or server status).
std::string NotificationToJson(const System::EventArgs& args, int indent = -1);

/// The notification that the text's "type" names, read from `json`. Throws `JsonError`
/// (UnknownName for an unknown type, MissingField when "type" is absent, ...). Any thread.
DecodedNotification NotificationFromJson(std::string_view json);

/// The type names of every notification, in the order of the notification table.
std::vector<std::string> NotificationTypeNames();

}  // namespace Korvo::Plexis::Tessel::Json

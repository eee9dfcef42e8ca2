#pragma once

#include <memory>
#include <string>

#include <Korvo/Plexis/Notification/CommandEventArgs.h>
#include <Korvo/System/EventArgs.h>

namespace Korvo::Plexis::Tessel::Json {

/// A notification read from JSON: its type name and its arguments, as an object of the class the
/// notification client delivers for that type. The clip and angles-group notifications derive
/// from `CommandEventArgs`, the status ones from `System::EventArgs`: exactly one of the two
/// pointers is set. A value type that owns its arguments.
struct DecodedNotification {
    std::string typeName;  ///< "PlayerStateChanged", "ClipCreationStarted", ...
    std::unique_ptr<Notification::CommandEventArgs> commandArgs;  ///< clip and angles-group types
    std::unique_ptr<System::EventArgs> statusArgs;                ///< status types
};

}  // namespace Korvo::Plexis::Tessel::Json

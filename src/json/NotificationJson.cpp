#include <Korvo/Plexis/Tessel/Json/NotificationJson.h>

#include "json/FamilyTable.h"
#include "json/RequiredFields.h"

namespace Korvo::Plexis::Tessel::Json {
namespace {

using Detail::Row;

// Reads a new `Args` into the pointer of its side: command events or status events.
template <class Args>
DecodedNotification ReadNotification(const Detail::Value& json, Detail::Reader& reader) {
    DecodedNotification decoded;
    if constexpr (std::is_base_of_v<Notification::CommandEventArgs, Args>) {
        decoded.commandArgs =
            Detail::ReadObject<Args, std::unique_ptr<Notification::CommandEventArgs>>(json, reader);
    } else {
        decoded.statusArgs =
            Detail::ReadObject<Args, std::unique_ptr<System::EventArgs>>(json, reader);
    }
    return decoded;
}

#define KORVO_JSON_NOTIFICATION_ROW(Name, Family, Args, ...)           \
    Row<DecodedNotification>{#Name, &typeid(Notification::Args),       \
                             &Detail::WriteObject<Notification::Args>, \
                             &ReadNotification<Notification::Args>},
const Row<DecodedNotification> kNotifications[] = {
    KORVO_TESSEL_NOTIFICATIONS(KORVO_JSON_NOTIFICATION_ROW)};
#undef KORVO_JSON_NOTIFICATION_ROW

}  // namespace

std::string NotificationToJson(const Notification::CommandEventArgs& args, int indent) {
    return Detail::WriteWithRow(Detail::FindByType(kNotifications, args, "notification"), args,
                                true, indent);
}

std::string NotificationToJson(const System::EventArgs& args, int indent) {
    return Detail::WriteWithRow(Detail::FindByType(kNotifications, args, "notification"), args,
                                true, indent);
}

DecodedNotification NotificationFromJson(std::string_view json) {
    std::string typeName;
    auto decoded = Detail::ReadTyped(kNotifications, json, "notification", &typeName);
    decoded.typeName = std::move(typeName);
    return decoded;
}

std::vector<std::string> NotificationTypeNames() {
    return Detail::Names(kNotifications);
}

}  // namespace Korvo::Plexis::Tessel::Json

#pragma once

// The notifications of the protocol keyed by type: traits derived from the rows of
// `MessageTables.h`, which the notification dispatch, the JSON form, the simulator and the
// command-line tool expand.

#include <string_view>

#include <Korvo/Plexis/Tessel/Client/NotificationHandlers.h>
#include <Korvo/Plexis/Tessel/MessageTables.h>

namespace Korvo::Plexis::Tessel::Client {

/// What is common to the notifications of one family `Event` (`Notification::ClipCommandEvent`,
/// `ClipStatusEvent`, `ChannelStatusEvent` or `ServerStatusEvent`): `Args`, the base class its
/// arguments are delivered to the family's list as, and `kHandlers`, that list in
/// `NotificationHandlers`.
template <class Event>
struct NotificationFamilyTraits;

#define KORVO_TESSEL_NOTIFICATION_FAMILY(Family, list)                            \
    template <>                                                                   \
    struct NotificationFamilyTraits<Notification::Family##Event> {                \
        using Args = Notification::Family##EventArgs;                             \
        static constexpr auto kHandlers = &NotificationHandlers::list;            \
    };
KORVO_TESSEL_NOTIFICATION_FAMILY(ClipCommand, clipCommandHandlers)
KORVO_TESSEL_NOTIFICATION_FAMILY(ClipStatus, clipStatusHandlers)
KORVO_TESSEL_NOTIFICATION_FAMILY(ChannelStatus, channelStatusHandlers)
KORVO_TESSEL_NOTIFICATION_FAMILY(ServerStatus, serverStatusHandlers)
#undef KORVO_TESSEL_NOTIFICATION_FAMILY

/// What the tables say of the argument class `Args` a notification is delivered as; defined for
/// the 17 notifications only:
/// - `kName`: the notification type name in the message header ("PlayerStateChanged");
/// - `Event`: its family's enumeration struct, and `kFamilyName` its name ("ChannelStatus");
/// - `kType`: its enumerator in `Event::Type`;
/// - `kHandlers`: its own callback list in `NotificationHandlers`.
template <class Args>
struct NotificationTraits;

#define KORVO_TESSEL_NOTIFICATION_TRAITS(Name, Family, ArgsClass, list)                  \
    template <>                                                                          \
    struct NotificationTraits<Notification::ArgsClass> {                                 \
        static constexpr std::string_view kName = #Name;                                 \
        static constexpr std::string_view kFamilyName = #Family;                         \
        using Event = Notification::Family##Event;                                       \
        static constexpr Event::Type kType = Event::Name;                                \
        static constexpr auto kHandlers = &NotificationHandlers::list;                   \
    };
KORVO_TESSEL_NOTIFICATIONS(KORVO_TESSEL_NOTIFICATION_TRAITS)
#undef KORVO_TESSEL_NOTIFICATION_TRAITS

/// Calls `visit(static_cast<Args*>(nullptr))` for every notification, in table order.
template <class Visit>
constexpr void ForEachNotification(Visit&& visit) {
#define KORVO_TESSEL_VISIT_NOTIFICATION(Name, Family, ArgsClass, ...) \
    visit(static_cast<Notification::ArgsClass*>(nullptr));
    KORVO_TESSEL_NOTIFICATIONS(KORVO_TESSEL_VISIT_NOTIFICATION)
#undef KORVO_TESSEL_VISIT_NOTIFICATION
}

}  // namespace Korvo::Plexis::Tessel::Client

#pragma once

#include <atomic>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

#include <Korvo/Common/Messaging/Message.h>
#include <Korvo/Plexis/Tessel/Client/NotificationHandlers.h>

namespace Korvo::Plexis::Tessel::Client::Detail {

/// Recognises a notification by its header, decodes its payload into the type's argument class
/// and delivers it to the lists of a `NotificationHandlers`. Holds the four families' lookup
/// tables, built once by the constructor from the notification table; otherwise stateless.
class NotificationDispatch {
public:
    /// `stop`, when given, is checked after every callback: once it is set the current
    /// notification's remaining callbacks are skipped and the lists are not touched again.
    explicit NotificationDispatch(const std::atomic<bool>* stop = nullptr);

    /// Delivers `message`; returns false, having decoded and called nothing, when its header
    /// names no notification type. Throws `InvalidFormatException` for a payload that cannot be
    /// decoded and `InvalidConversionException` for one that cannot be converted (no callback is
    /// called then), and whatever a callback throws (the later callbacks are not called).
    bool operator()(const NotificationHandlers& handlers,
                    const Common::Messaging::Message& message) const;

    /// Decodes and delivers one notification of a known type.
    using Deliver = void (*)(const std::atomic<bool>* stop, const NotificationHandlers& handlers,
                             const Common::Messaging::Message& message);

    /// One family's type names and, by enumerator, how each is delivered (null for a value this
    /// client never receives).
    template <class Event>
    struct Family {
        std::unordered_map<std::string, typename Event::Type> messageTypes;
        std::vector<Deliver> deliveries;
    };

private:
    const std::atomic<bool>* stop;
    // Looked up in this order; no name stands in two families.
    std::tuple<Family<Notification::ClipCommandEvent>, Family<Notification::ClipStatusEvent>,
               Family<Notification::ChannelStatusEvent>, Family<Notification::ServerStatusEvent>>
        families;
};

}  // namespace Korvo::Plexis::Tessel::Client::Detail

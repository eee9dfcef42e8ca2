#pragma once

#include <atomic>
#include <string>
#include <unordered_map>

#include <Korvo/Common/Messaging/Message.h>
#include <Korvo/Plexis/Tessel/Client/NotificationHandlers.h>

namespace Korvo::Plexis::Tessel::Client::Detail {

/// Recognises a notification by its header, decodes its payload into the type's argument class
/// and delivers it to the lists of a `NotificationHandlers`. Holds the four families' lookup
/// tables, built once by the constructor; otherwise stateless.
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

private:
    const std::atomic<bool>* stop;
    // The four families' type names, looked up in this order; no name stands in two tables.
    std::unordered_map<std::string, Notification::ClipCommandEvent::Type> clipCommandMessageTypes;
    std::unordered_map<std::string, Notification::ClipStatusEvent::Type> clipStatusMessageTypes;
    std::unordered_map<std::string, Notification::ChannelStatusEvent::Type>
        channelStatusMessageTypes;
    std::unordered_map<std::string, Notification::ServerStatusEvent::Type> serverStatusMessageTypes;
};

}  // namespace Korvo::Plexis::Tessel::Client::Detail

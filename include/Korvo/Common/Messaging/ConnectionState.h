#pragma once

namespace Korvo::Common::Messaging {

/// What a messenger or subscription knows of its link to one endpoint.
enum class ConnectionState {
    Connecting,    ///< not connected yet since start-up
    Connected,     ///< the link is up (and, with heartbeats, the peer answers)
    Reconnecting,  ///< the link went down; the transport keeps trying
    Disconnected,  ///< the link is down and the transport is not trying (for example refused)
    ShutDown,      ///< shut down by the application; final
};

/// "Connecting", "Connected", ... for logs and tools.
inline const char* ToString(ConnectionState state) noexcept {
    switch (state) {
        case ConnectionState::Connecting:
            return "Connecting";
        case ConnectionState::Connected:
            return "Connected";
        case ConnectionState::Reconnecting:
            return "Reconnecting";
        case ConnectionState::Disconnected:
            return "Disconnected";
        case ConnectionState::ShutDown:
            return "ShutDown";
    }
    return "Unknown";
}

}  // namespace Korvo::Common::Messaging

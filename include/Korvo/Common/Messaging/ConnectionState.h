#pragma once

namespace Korvo::Common::Messaging {

/// What a messenger or subscription knows of its link to one endpoint, as reported by the
/// transport's own monitoring and heartbeats.
enum class ConnectionState {
    Connecting,    ///< not connected since start-up; the transport keeps trying
    Connected,     ///< the greeting (and CURVE handshake) completed and heartbeats are answered
    Reconnecting,  ///< the link was up and went down (peer closed, or heartbeats unanswered);
                   ///< the transport keeps trying on its back-off schedule
    Disconnected,  ///< the transport dropped the link for a protocol fault (for example a message
                   ///< over the size limit) and would not retry by itself; the link is re-created
                   ///< at once, which moves the state on to Reconnecting
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

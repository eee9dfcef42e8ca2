#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <Korvo/Common/Messaging/ConnectionState.h>
#include <Korvo/Common/Serialization/Buffer.h>
#include <Korvo/Plexis/Tessel/Client/BaseMessage.h>

namespace Korvo::Plexis::Tessel::Client {

/// The transport under a `CommandClient`, which owns it. The client calls `Send` from any number
/// of application threads at once, `Receive` from its reception thread only, and `ShutDown` once
/// per stop from whichever thread stops it, possibly while other threads are inside `Send` or
/// `Receive`; implementations must allow all of that.
///
/// Failures are `Korvo::Common::Messaging::ObjectShutDownException` once shut down and
/// `Korvo::Common::Messaging::TransportException` when the transport fails.
class BaseClientMessenger {
public:
    using ConnectionStateHandler = std::function<void(Common::Messaging::ConnectionState)>;

    /// Releases the transport.
    virtual ~BaseClientMessenger() = default;

    /// True once `ShutDown` has run, or the transport was shut down otherwise. Any thread.
    virtual bool IsShutDown() const = 0;

    /// Closes the transport and interrupts any `Send` or `Receive` in progress; afterwards both
    /// throw `ObjectShutDownException`.
    virtual void ShutDown() = 0;

    /// Sends one command: `commandName`, the payload bytes unchanged, and `ticket`, which the
    /// server echoes in every message of its reply. The payload stays the caller's.
    virtual void Send(const int& ticket, const std::string& commandName,
                      const Common::Serialization::Buffer& payload) = 0;

    /// Like `Send`, but returns false, without throwing, when the command certainly never reached
    /// the transport (no link to the server, or no room for it), so that the caller may send it
    /// again. True once the transport has taken it. The default calls `Send` and returns true.
    virtual bool TrySend(const int& ticket, const std::string& commandName,
                         const Common::Serialization::Buffer& payload) {
        Send(ticket, commandName, payload);
        return true;
    }

    /// How many times a link that was up has been lost since the messenger was made. A command
    /// sent while this read n cannot be answered once it reads more than n. Any thread; the
    /// default, 0, means the messenger does not tell.
    virtual std::uint64_t GetLinkLosses() const { return 0; }

    /// What the messenger knows of its link to the server. Any thread.
    virtual Common::Messaging::ConnectionState GetConnectionState() const = 0;

    /// Installs `handler`, called with each new connection state from the messenger's own thread;
    /// an empty handler removes it. The handler must not call back into the messenger.
    virtual void SetConnectionStateHandler(ConnectionStateHandler handler) = 0;

    /// The next reply message; an empty pointer (or an invalid message) when nothing arrived
    /// within the transport's own short wait. Never blocks indefinitely.
    virtual std::unique_ptr<BaseMessage> Receive() = 0;
};

}  // namespace Korvo::Plexis::Tessel::Client

#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <Korvo/Common/Messaging/ConnectionState.h>
#include <Korvo/Common/Messaging/EndPoint.h>
#include <Korvo/Common/Messaging/TransportOptions.h>
#include <Korvo/Common/Serialization/Buffer.h>
#include <Korvo/Plexis/Tessel/Client/BaseClientMessenger.h>

namespace Korvo::Common::Messaging::Client {
class Messenger;
}

namespace Korvo::Plexis::Tessel::Client {

/// The messenger a `CommandClient` uses to reach a server over ZeroMQ: a
/// `Korvo::Common::Messaging::Client::Messenger` (its class comment tells how commands are queued,
/// dropped and logged, and which thread may call what) behind the `BaseClientMessenger`
/// interface. Hand it to a `CommandClient`, which owns it from then on.
class ZmqMessenger final : public BaseClientMessenger {
public:
    /// Starts connecting to `server`, as `Messenger`'s constructor does, and throws what it throws
    /// (`TransportException`).
    explicit ZmqMessenger(const Common::Messaging::EndPoint& server,
                          const Common::Messaging::TransportOptions& options = {},
                          ConnectionStateHandler handler = {});

    /// Shuts the link down if that has not happened yet.
    ~ZmqMessenger() override;

    ZmqMessenger(const ZmqMessenger&) = delete;
    ZmqMessenger& operator=(const ZmqMessenger&) = delete;

    bool IsShutDown() const override;
    void ShutDown() override;
    void Send(const int& ticket, const std::string& commandName,
              const Common::Serialization::Buffer& payload) override;
    bool TrySend(const int& ticket, const std::string& commandName,
                 const Common::Serialization::Buffer& payload) override;
    std::uint64_t GetLinkLosses() const override;
    Common::Messaging::ConnectionState GetConnectionState() const override;
    void SetConnectionStateHandler(ConnectionStateHandler handler) override;

    /// The next well-formed reply, or an empty pointer when none came within
    /// `TransportOptions::receiveWait` (see `Messenger::Receive`).
    std::unique_ptr<BaseMessage> Receive() override;

    /// The endpoint given to the constructor.
    const Common::Messaging::EndPoint& GetEndPoint() const;

private:
    std::unique_ptr<Common::Messaging::Client::Messenger> messenger;
};

}  // namespace Korvo::Plexis::Tessel::Client

#include <Korvo/Plexis/Tessel/Client/ZmqMessenger.h>

#include <utility>

#include <Korvo/Common/Messaging/Client/Messenger.h>
#include <Korvo/Common/Messaging/Message.h>

namespace Korvo::Plexis::Tessel::Client {

using Common::Messaging::Message;

namespace {

// A reply as the command client reads it; the bytes stay in the frame they were received in.
class ReceivedReply final : public BaseMessage {
public:
    explicit ReceivedReply(std::unique_ptr<Message> message) : message(std::move(message)) {}

    const unsigned char* Data() const override { return message->Data(); }
    bool IsValid() const override { return message->IsValid(); }
    unsigned int DataSize() const override { return message->DataSize(); }
    const Common::Serialization::Buffer& GetPayload() const override {
        return message->GetPayload();
    }
    const std::string& GetHeader() const override { return message->GetHeader(); }
    const Common::Messaging::Origin& GetOrigin() const override { return message->GetOrigin(); }

private:
    std::unique_ptr<Message> message;
};

}  // namespace

ZmqMessenger::ZmqMessenger(const Common::Messaging::EndPoint& server,
                           const Common::Messaging::TransportOptions& options,
                           ConnectionStateHandler handler)
    : messenger(std::make_unique<Common::Messaging::Client::Messenger>(server, options,
                                                                       std::move(handler))) {}

ZmqMessenger::~ZmqMessenger() = default;

bool ZmqMessenger::IsShutDown() const { return messenger->IsShutDown(); }

void ZmqMessenger::ShutDown() { messenger->ShutDown(); }

void ZmqMessenger::Send(const int& ticket, const std::string& commandName,
                        const Common::Serialization::Buffer& payload) {
    messenger->Send(ticket, commandName, payload);
}

bool ZmqMessenger::TrySend(const int& ticket, const std::string& commandName,
                           const Common::Serialization::Buffer& payload) {
    return messenger->TrySend(ticket, commandName, payload);
}

std::uint64_t ZmqMessenger::GetLinkLosses() const { return messenger->GetLinkLosses(); }

Common::Messaging::ConnectionState ZmqMessenger::GetConnectionState() const {
    return messenger->GetConnectionState();
}

void ZmqMessenger::SetConnectionStateHandler(ConnectionStateHandler handler) {
    messenger->SetConnectionStateHandler(std::move(handler));
}

std::unique_ptr<BaseMessage> ZmqMessenger::Receive() {
    auto message = messenger->Receive();
    if (!message) {
        return nullptr;
    }
    return std::make_unique<ReceivedReply>(std::move(message));
}

const Common::Messaging::EndPoint& ZmqMessenger::GetEndPoint() const {
    return messenger->GetEndPoint();
}

}  // namespace Korvo::Plexis::Tessel::Client

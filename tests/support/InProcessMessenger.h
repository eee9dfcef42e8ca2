#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <Korvo/Common/Serialization/PointerBuffer.h>
#include <Korvo/Plexis/Tessel/Client/BaseClientMessenger.h>
#include <Korvo/Plexis/Tessel/Client/BaseMessage.h>

namespace Korvo::Testing {

using Plexis::Tessel::Client::BaseClientMessenger;
using Plexis::Tessel::Client::BaseMessage;

/// A received message made of owned strings.
class TestMessage final : public BaseMessage {
public:
    TestMessage(int ticket, std::string header, std::string data, bool valid = true)
        : origin(ticket),
          header(std::move(header)),
          data(std::move(data)),
          valid(valid),
          view(reinterpret_cast<unsigned char*>(this->data.data()),
               static_cast<unsigned int>(this->data.size())) {}

    const unsigned char* Data() const override { return view.Pointer(); }
    bool IsValid() const override { return valid; }
    unsigned int DataSize() const override { return view.Size(); }
    const Common::Serialization::Buffer& GetPayload() const override { return view; }
    const std::string& GetHeader() const override { return header; }
    const Common::Messaging::Origin& GetOrigin() const override { return origin; }

private:
    Common::Messaging::Origin origin;
    std::string header;
    std::string data;
    bool valid;
    Common::Serialization::PointerBuffer view;
};

/// One command as the messenger was asked to send it.
struct SentCommand {
    int ticket;
    std::string name;
    std::string payload;
};

/// The server's end of an in-process link: sees what the client sent, queues replies for it and
/// injects failures. Shared by the test and the messenger; thread-safe.
class InProcessServer {
public:
    /// Queues a message for the client's next Receive.
    void Reply(int ticket, const std::string& header, const std::string& data = {});
    /// Queues a message whose IsValid() is false.
    void ReplyInvalid(int ticket, const std::string& header);
    /// The next Send throws `error` (and sends nothing).
    void FailNextSend(std::exception_ptr error);
    /// The next Receive throws `error`.
    void FailNextReceive(std::exception_ptr error);

    /// Waits until at least `count` commands were sent; false if that took longer than `limit`.
    bool WaitForSent(std::size_t count, std::chrono::milliseconds limit = std::chrono::seconds(30));
    std::vector<SentCommand> Sent() const;
    /// Takes the commands sent so far (blocking up to `limit` for at least one).
    std::vector<SentCommand> TakeSent(std::chrono::milliseconds limit = std::chrono::seconds(30));

    /// Shuts the link down as if from outside the client (the messenger's own `ShutDown` is
    /// not called).
    void ShutDownFromOutside();

    int ShutDownCalls() const;
    bool IsShutDown() const;
    int ReceiveCalls() const;

private:
    friend class InProcessMessenger;

    mutable std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::unique_ptr<BaseMessage>> toClient;
    std::vector<SentCommand> sent;
    std::size_t taken = 0;
    std::exception_ptr sendFailure;
    std::exception_ptr receiveFailure;
    bool shutDown = false;
    int shutDownCalls = 0;
    int receiveCalls = 0;
};

/// A messenger over an InProcessServer. Receive waits up to 50 ms for a message.
class InProcessMessenger final : public BaseClientMessenger {
public:
    explicit InProcessMessenger(std::shared_ptr<InProcessServer> server)
        : server(std::move(server)) {}

    bool IsShutDown() const override;
    void ShutDown() override;
    void Send(const int& ticket, const std::string& commandName,
              const Common::Serialization::Buffer& payload) override;
    Common::Messaging::ConnectionState GetConnectionState() const override;
    void SetConnectionStateHandler(ConnectionStateHandler handler) override;
    std::unique_ptr<BaseMessage> Receive() override;

private:
    std::shared_ptr<InProcessServer> server;
};

}  // namespace Korvo::Testing

// Sends one command through a CommandClient and prints what the library logs.
//
// The "server" here is an in-process messenger that answers every command by echoing its payload
// back, first as two "[part]" messages and then as the final reply, so the example shows the
// whole life of a request: ticket, parts, final reply, stop.

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <iostream>
#include <mutex>

#include <Korvo/Plexis/Tessel/Client.h>

namespace {

using namespace Korvo::Plexis::Tessel;
using Korvo::Common::Messaging::ConnectionState;
using Korvo::Common::Messaging::ObjectShutDownException;
using Korvo::Common::Serialization::Buffer;
using Korvo::Common::Serialization::PointerBuffer;

class EchoMessage final : public Client::BaseMessage {
public:
    EchoMessage(int ticket, std::string header, std::string text)
        : origin(ticket),
          header(std::move(header)),
          text(std::move(text)),
          view(reinterpret_cast<unsigned char*>(this->text.data()),
               static_cast<unsigned int>(this->text.size())) {}
    const unsigned char* Data() const override { return view.Pointer(); }
    bool IsValid() const override { return true; }
    unsigned int DataSize() const override { return view.Size(); }
    const Buffer& GetPayload() const override { return view; }
    const std::string& GetHeader() const override { return header; }
    const Korvo::Common::Messaging::Origin& GetOrigin() const override { return origin; }

private:
    Korvo::Common::Messaging::Origin origin;
    std::string header;
    std::string text;
    PointerBuffer view;
};

// Answers each command with its payload, in three messages.
class EchoMessenger final : public Client::BaseClientMessenger {
public:
    bool IsShutDown() const override {
        std::lock_guard<std::mutex> lock(mutex);
        return shutDown;
    }
    void ShutDown() override {
        std::lock_guard<std::mutex> lock(mutex);
        shutDown = true;
        arrived.notify_all();
    }
    void Send(const int& ticket, const std::string& commandName, const Buffer& payload) override {
        std::lock_guard<std::mutex> lock(mutex);
        if (shutDown) {
            throw ObjectShutDownException("echo messenger shut down");
        }
        const std::string text(reinterpret_cast<const char*>(payload.Pointer()), payload.Size());
        const std::string reply = commandName + "Reply";
        replies.push_back(std::make_unique<EchoMessage>(ticket, "[part]" + reply, text + " (1/3)"));
        replies.push_back(std::make_unique<EchoMessage>(ticket, "[part]" + reply, text + " (2/3)"));
        replies.push_back(std::make_unique<EchoMessage>(ticket, reply, text + " (3/3)"));
        arrived.notify_all();
    }
    ConnectionState GetConnectionState() const override {
        return IsShutDown() ? ConnectionState::ShutDown : ConnectionState::Connected;
    }
    void SetConnectionStateHandler(ConnectionStateHandler) override {}
    std::unique_ptr<Client::BaseMessage> Receive() override {
        std::unique_lock<std::mutex> lock(mutex);
        arrived.wait_for(lock, std::chrono::milliseconds(50),
                         [this] { return shutDown || !replies.empty(); });
        if (shutDown) {
            throw ObjectShutDownException("echo messenger shut down");
        }
        if (replies.empty()) {
            return nullptr;
        }
        auto message = std::move(replies.front());
        replies.pop_front();
        return message;
    }

private:
    mutable std::mutex mutex;
    std::condition_variable arrived;
    std::deque<std::unique_ptr<Client::BaseMessage>> replies;
    bool shutDown = false;
};

struct TextParams final : HighLevelOperations::Commands::CommandParams {
    explicit TextParams(std::string text) : text(std::move(text)) {}
    std::string text;
};

struct TextReply final : HighLevelOperations::Commands::CommandReplyOfType<1> {
    explicit TextReply(std::string text) : text(std::move(text)) {}
    std::string text;
};

class TextPayloadBuilder final : public Client::CommandParamsPayloadBuilder {
public:
    std::unique_ptr<Buffer> BuildPayload(
        const std::string&, const HighLevelOperations::Commands::CommandParams& params) override {
        const std::string& text = static_cast<const TextParams&>(params).text;
        auto* bytes = static_cast<unsigned char*>(std::malloc(text.size() + 1));
        std::memcpy(bytes, text.data(), text.size());
        return PointerBuffer::AdoptMalloced(bytes, static_cast<unsigned int>(text.size()));
    }
};

class TextReplyBuilder final : public Client::CommandReplyBuilder {
public:
    std::unique_ptr<HighLevelOperations::Commands::CommandReply> BuildCommandReply(
        const std::string&, const Buffer& buffer) override {
        return std::make_unique<TextReply>(
            std::string(reinterpret_cast<const char*>(buffer.Pointer()), buffer.Size()));
    }
};

}  // namespace

int main() {
    auto& loggers = Logging::Loggers::GetInstance();
    loggers.SetLoggerFactory(std::make_unique<Logging::StandardErrorLoggerFactory>());
    loggers.SetLoggingLevel(Logging::ILogger::Info);

    Client::CommandClient client(std::make_unique<EchoMessenger>(),
                                 std::make_shared<TextPayloadBuilder>(),
                                 std::make_shared<TextReplyBuilder>());

    auto pending = client.Request("PingCommand", TextParams("hello, server"));
    if (!pending) {
        std::cerr << "the command could not be sent\n";
        return EXIT_FAILURE;
    }
    std::cout << "sent PingCommand under ticket " << pending->GetRequestId() << '\n';
    using Kind = Client::PendingCommandReply::ItemKind;
    while (pending->IsPending()) {
        auto item = pending->Next(std::chrono::seconds(5));
        if (item.kind != Kind::Partial && item.kind != Kind::Final) {
            // Timed out, cancelled, not sent, link lost or overflowed: no reply will come.
            std::cerr << "no reply\n";
            return EXIT_FAILURE;
        }
        auto reply = pending->BuildReply(item);
        std::cout << (item.kind == Kind::Partial ? "part:  " : "final: ")
                  << item.message->GetHeader() << " \""
                  << static_cast<const TextReply&>(*reply).text << "\"\n";
    }
    client.Stop();
    return EXIT_SUCCESS;
}

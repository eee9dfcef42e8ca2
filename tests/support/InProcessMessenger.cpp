#include "support/InProcessMessenger.h"

#include <Korvo/Common/Messaging/ObjectShutDownException.h>

namespace Korvo::Testing {

using Common::Messaging::ConnectionState;
using Common::Messaging::ObjectShutDownException;

void InProcessServer::Reply(int ticket, const std::string& header, const std::string& data) {
    {
        std::lock_guard<std::mutex> lock(mutex);
        toClient.push_back(std::make_unique<TestMessage>(ticket, header, data));
    }
    changed.notify_all();
}

void InProcessServer::ReplyInvalid(int ticket, const std::string& header) {
    {
        std::lock_guard<std::mutex> lock(mutex);
        toClient.push_back(std::make_unique<TestMessage>(ticket, header, "", false));
    }
    changed.notify_all();
}

void InProcessServer::FailNextSend(std::exception_ptr error) {
    std::lock_guard<std::mutex> lock(mutex);
    sendFailure = std::move(error);
}

void InProcessServer::FailNextReceive(std::exception_ptr error) {
    {
        std::lock_guard<std::mutex> lock(mutex);
        receiveFailure = std::move(error);
    }
    changed.notify_all();
}

bool InProcessServer::WaitForSent(std::size_t count, std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> lock(mutex);
    return changed.wait_for(lock, limit, [&] { return sent.size() >= count; });
}

std::vector<SentCommand> InProcessServer::Sent() const {
    std::lock_guard<std::mutex> lock(mutex);
    return sent;
}

std::vector<SentCommand> InProcessServer::TakeSent(std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait_for(lock, limit, [&] { return sent.size() > taken; });
    std::vector<SentCommand> fresh(sent.begin() + static_cast<std::ptrdiff_t>(taken), sent.end());
    taken = sent.size();
    return fresh;
}

void InProcessServer::ShutDownFromOutside() {
    {
        std::lock_guard<std::mutex> lock(mutex);
        shutDown = true;
    }
    changed.notify_all();
}

int InProcessServer::ShutDownCalls() const {
    std::lock_guard<std::mutex> lock(mutex);
    return shutDownCalls;
}

bool InProcessServer::IsShutDown() const {
    std::lock_guard<std::mutex> lock(mutex);
    return shutDown;
}

int InProcessServer::ReceiveCalls() const {
    std::lock_guard<std::mutex> lock(mutex);
    return receiveCalls;
}

bool InProcessMessenger::IsShutDown() const {
    return server->IsShutDown();
}

void InProcessMessenger::ShutDown() {
    {
        std::lock_guard<std::mutex> lock(server->mutex);
        server->shutDown = true;
        ++server->shutDownCalls;
    }
    server->changed.notify_all();
}

void InProcessMessenger::Send(const int& ticket, const std::string& commandName,
                              const Common::Serialization::Buffer& payload) {
    {
        std::lock_guard<std::mutex> lock(server->mutex);
        if (server->shutDown) {
            throw ObjectShutDownException("in-process messenger shut down");
        }
        if (server->sendFailure) {
            std::rethrow_exception(std::exchange(server->sendFailure, nullptr));
        }
        server->sent.push_back(
            {ticket, commandName,
             std::string(reinterpret_cast<const char*>(payload.Pointer()), payload.Size())});
    }
    server->changed.notify_all();
}

ConnectionState InProcessMessenger::GetConnectionState() const {
    return IsShutDown() ? ConnectionState::ShutDown : ConnectionState::Connected;
}

void InProcessMessenger::SetConnectionStateHandler(ConnectionStateHandler) {
    // An in-process link is up from the start until shut down; there is no change to report.
}

std::unique_ptr<BaseMessage> InProcessMessenger::Receive() {
    std::unique_lock<std::mutex> lock(server->mutex);
    ++server->receiveCalls;
    server->changed.wait_for(lock, std::chrono::milliseconds(50), [this] {
        return server->shutDown || server->receiveFailure || !server->toClient.empty();
    });
    if (server->shutDown) {
        throw ObjectShutDownException("in-process messenger shut down");
    }
    if (server->receiveFailure) {
        std::rethrow_exception(std::exchange(server->receiveFailure, nullptr));
    }
    if (server->toClient.empty()) {
        return nullptr;
    }
    auto message = std::move(server->toClient.front());
    server->toClient.pop_front();
    return message;
}

}  // namespace Korvo::Testing

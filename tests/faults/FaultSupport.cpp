#include "faults/FaultSupport.h"

#include <thread>

namespace Korvo::Testing {

using namespace Plexis::Tessel::Client;
using Common::Messaging::EndPoint;
using Common::Messaging::Client::Messenger;

std::unique_ptr<CommandClient> DataClientTo(const std::string& endpoint,
                                            const TransportOptions& options, StateLog* states) {
    Messenger::ConnectionStateHandler handler;
    if (states != nullptr) {
        handler = [states](ConnectionState state) { states->Record(state); };
    }
    return std::make_unique<CommandClient>(
        std::make_unique<Messenger>(EndPoint(endpoint), options, std::move(handler)),
        std::make_shared<DataCommandParamsPayloadBuilder>(),
        std::make_shared<DataCommandReplyBuilder>());
}

bool AwaitConnected(const CommandClient& client, std::chrono::milliseconds limit) {
    return Eventually(
        [&] { return client.GetConnectionState() == ConnectionState::Connected; }, limit);
}

bool PingAnswered(CommandClient& client, std::chrono::milliseconds limit) {
    const auto params = Ping();
    auto pending = client.Request("PingCommand", params);
    if (!pending) {
        return false;
    }
    auto item = pending->Next(limit);
    if (item.kind != Kind::Final) {
        return false;
    }
    const auto reply = pending->BuildReply(item);
    return dynamic_cast<const Commands::SuccessReply*>(reply.get()) != nullptr &&
           reply->commandGuid == params.commandGuid;
}

bool Eventually(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

int CountLogged(const RecordingLogger& log, const std::string& text) {
    int count = 0;
    for (const auto& record : log.Texts()) {
        count += record.find(text) != std::string::npos ? 1 : 0;
    }
    return count;
}

}  // namespace Korvo::Testing

#include "faults/FaultSupport.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

namespace Korvo::Testing {

using namespace Plexis::Tessel::Client;
using Common::Messaging::EndPoint;
using Messenger = Plexis::Tessel::Client::ZmqMessenger;

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


namespace Converters = Plexis::Tessel::Serialization::Thrift::Notifier;

std::string ServerAdded(int id, std::size_t nameBytes) {
    Events::ServerAddedEventArgs args;
    args.serverId = id;
    args.server.name.assign(nameBytes, 'n');
    Converters::Generated::ServerAddedEventArgs wire;
    EXPECT_TRUE(Converters::ServerAddedEventArgsToThriftConverter().To(args, wire).success);
    auto bytes = Common::Serialization::SerializerImpl<Converters::Generated::ServerAddedEventArgs>()
                     .Serialize(wire);
    return {reinterpret_cast<const char*>(bytes->Pointer()), bytes->Size()};
}

void Deliveries::Attach(Plexis::Tessel::Client::NotificationClient& client) {
    auto lock = client.LockHandlers();
    client.serverAddedHandlers.push_back(
        [this](const Events::ServerAddedEventArgs& args) { Add(args.serverId); });
}

void Deliveries::Add(int id) {
    // Notified under the lock: a waiter that sees the id may destroy this object at once.
    std::lock_guard<std::mutex> lock(mutex);
    ids.push_back(id);
    changed.notify_all();
}

bool Deliveries::WaitFor(const std::function<bool(const std::vector<int>&)>& condition,
                         std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> lock(mutex);
    return changed.wait_for(lock, limit, [&] { return condition(ids); });
}

bool Deliveries::WaitForId(int id, std::chrono::milliseconds limit) {
    return WaitFor(
        [id](const std::vector<int>& seen) {
            return std::find(seen.begin(), seen.end(), id) != seen.end();
        },
        limit);
}

std::size_t Deliveries::Count() {
    std::lock_guard<std::mutex> lock(mutex);
    return ids.size();
}

namespace {

std::string ProcPath(int pid, const char* leaf) {
    return "/proc/" + (pid == 0 ? std::string("self") : std::to_string(pid)) + "/" + leaf;
}

// The value after `key` in /proc/<pid>/status, or -1.
long long StatusField(int pid, const std::string& key) {
    std::ifstream status(ProcPath(pid, "status"));
    std::string line;
    while (std::getline(status, line)) {
        if (line.compare(0, key.size(), key) == 0) {
            return std::atoll(line.c_str() + key.size());
        }
    }
    return -1;
}

}  // namespace

std::chrono::milliseconds AttackDuration() {
    const char* text = std::getenv("KORVO_ATTACK_SECONDS");
    const long seconds = text != nullptr ? std::atol(text) : 0;
    return std::chrono::seconds(seconds > 0 ? seconds : 2);
}

long long ResidentBytes(int pid) {
    const auto kib = StatusField(pid, "VmRSS:");
    return kib < 0 ? 0 : kib * 1024;
}

int ThreadCount(int pid) {
    return static_cast<int>(StatusField(pid, "Threads:"));
}

std::chrono::milliseconds CpuTime(int pid) {
    // /proc/<pid>/stat: fields 14 and 15 (utime, stime) in clock ticks, after the command name,
    // which is in parentheses and may itself contain spaces.
    std::ifstream stat(ProcPath(pid, "stat"));
    std::string text((std::istreambuf_iterator<char>(stat)), std::istreambuf_iterator<char>());
    const auto close = text.rfind(')');
    if (close == std::string::npos) {
        return std::chrono::milliseconds(0);
    }
    std::istringstream fields(text.substr(close + 2));
    std::string field;
    long long ticks = 0;
    for (int index = 3; index <= 15 && fields >> field; ++index) {
        if (index == 14 || index == 15) {
            ticks += std::atoll(field.c_str());
        }
    }
    return std::chrono::milliseconds(ticks * 1000 / sysconf(_SC_CLK_TCK));
}

}  // namespace Korvo::Testing

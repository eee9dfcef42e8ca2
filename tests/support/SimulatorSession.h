#pragma once

// A simulator on loopback with the clients an application would use against it: one command
// client per builder family over the ZeroMQ messenger, and a notification client whose every
// notification lands in an inbox that tests wait on.

#include <any>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <typeindex>
#include <vector>

#include <gtest/gtest.h>

#include <Korvo/Plexis/Tessel/Client.h>
#include <Korvo/Plexis/Tessel/Simulator/Simulator.h>

#include "support/Waiting.h"

namespace Korvo::Testing {

namespace Commands = Plexis::Tessel::HighLevelOperations::Commands;
namespace Events = Plexis::Notification;
using Plexis::Tessel::Client::CommandClient;
using Plexis::Tessel::Client::NotificationClient;
using Plexis::Tessel::Simulator::Simulator;
using Plexis::Tessel::Simulator::SimulatorOptions;

inline constexpr auto kSessionPatience = kPatience;

/// Copies of every notification received, by argument class, for tests to wait on.
class Inbox {
public:
    template <class Args>
    void Attach(NotificationClient::Handlers<Args>& handlers) {
        handlers.push_back([this](const Args& args) {
            std::lock_guard<std::mutex> lock(mutex);
            List<Args>().push_back(args);
            arrived.notify_all();
        });
    }

    /// The first notification of class `Args` that satisfies `accept` after `skip` earlier ones
    /// that do, waiting for it up to the session's patience; a test failure and the default value
    /// when none comes.
    template <class Args>
    Args WaitFor(std::function<bool(const Args&)> accept = [](const Args&) { return true; },
                 std::size_t skip = 0) {
        std::unique_lock<std::mutex> lock(mutex);
        const Args* found = nullptr;
        arrived.wait_for(lock, kSessionPatience, [&] {
            std::size_t matched = 0;
            for (const auto& args : List<Args>()) {
                if (accept(args) && matched++ == skip) {
                    found = &args;
                    return true;
                }
            }
            return false;
        });
        if (found == nullptr) {
            ADD_FAILURE() << "no expected " << typeid(Args).name() << " arrived";
            return Args{};
        }
        return *found;
    }

    /// How many notifications of class `Args` have arrived.
    template <class Args>
    std::size_t Count() {
        std::lock_guard<std::mutex> lock(mutex);
        return List<Args>().size();
    }

private:
    template <class Args>
    std::vector<Args>& List() {
        auto& slot = lists[std::type_index(typeid(Args))];
        if (!slot.has_value()) {
            slot = std::make_shared<std::vector<Args>>();
        }
        return *std::any_cast<std::shared_ptr<std::vector<Args>>&>(slot);
    }

    std::mutex mutex;
    std::condition_variable arrived;
    std::map<std::type_index, std::any> lists;
};

/// Every message of one command's reply, built into domain replies.
struct Answer {
    std::vector<std::string> headers;  ///< in arrival order, parts first
    std::vector<std::unique_ptr<Commands::CommandReply>> replies;

    /// The final reply as `R`; a test failure (and a throw) when it is of another class.
    template <class R>
    const R& Final() const {
        const R* reply = replies.empty() ? nullptr : dynamic_cast<const R*>(replies.back().get());
        if (reply == nullptr) {
            throw std::runtime_error("the final reply is not a " + std::string(typeid(R).name()) +
                                     (headers.empty() ? "" : " but " + headers.back()));
        }
        return *reply;
    }
};

/// Parameters of class `P` with a fresh command identifier.
template <class P>
P NewParams() {
    static std::atomic<int> counter{0};  // tests may build parameters on several threads
    P params;
    params.commandGuid = Plexis::Data::Guid("test-command-" + std::to_string(++counter));
    return params;
}

/// The payload bytes of data command `name` with `params`, as they travel.
inline std::string Encoded(const std::string& name, const Commands::CommandParams& params) {
    const auto payload =
        Plexis::Tessel::Client::DataCommandParamsPayloadBuilder().BuildPayload(name, params);
    return std::string(reinterpret_cast<const char*>(payload->Pointer()), payload->Size());
}

class SimulatorSession {
public:
    explicit SimulatorSession(SimulatorOptions options = {});
    ~SimulatorSession();

    /// Sends a channel command (`channel` true) or a data command and gathers its whole reply.
    Answer Ask(const std::string& name, const Commands::CommandParams& params, bool channel);
    Answer AskChannel(const std::string& name, const Commands::CommandParams& params) {
        return Ask(name, params, true);
    }
    Answer AskData(const std::string& name, const Commands::CommandParams& params) {
        return Ask(name, params, false);
    }

    std::unique_ptr<Simulator> simulator;
    std::unique_ptr<CommandClient> channelClient;
    std::unique_ptr<CommandClient> dataClient;
    std::unique_ptr<NotificationClient> notifications;
    Inbox inbox;
};

/// A command client for `endpoint` with the builders of one family, connected (waited for).
std::unique_ptr<CommandClient> ConnectCommandClient(const std::string& endpoint, bool channel);

}  // namespace Korvo::Testing

#include "Session.h"

#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <stdexcept>

#include <Korvo/Common/Messaging/Client/Messenger.h>
#include <Korvo/Plexis/Tessel/Client/ChannelCommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/Client/ChannelsCommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandReplyBuilder.h>

#include "Errors.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Messaging = Common::Messaging;
using HighLevelOperations::Commands::CommandParams;

namespace {

template <class Builder, class Base>
std::shared_ptr<Base> Make() {
    return std::make_shared<Builder>();
}

// The two families, in the order they are asked whether they know a name. The builders' own
// tables decide: a name belongs to the family whose payload builder accepts it.
const CommandFamily kFamilies[] = {
    {"channel",
     &Make<Client::ChannelsCommandParamsPayloadBuilder, Client::CommandParamsPayloadBuilder>,
     &Make<Client::ChannelCommandReplyBuilder, Client::CommandReplyBuilder>},
    {"data", &Make<Client::DataCommandParamsPayloadBuilder, Client::CommandParamsPayloadBuilder>,
     &Make<Client::DataCommandReplyBuilder, Client::CommandReplyBuilder>},
};

constexpr const char* kUnknownCommand = "Unknown command type.";

Messaging::EndPoint WithKey(const std::string& text, const std::string& key) {
    try {
        Messaging::EndPoint endpoint(text);
        return key.empty() ? endpoint : Messaging::EndPoint(endpoint.Address(), key);
    } catch (const std::invalid_argument& error) {
        throw CliError(ExitCode::Usage, "bad endpoint \"" + text + "\": " + error.what());
    }
}

// The link state of one messenger, as its handler reports it, for a wait without polling.
struct LinkState {
    std::mutex mutex;
    std::condition_variable changed;
    Messaging::ConnectionState state = Messaging::ConnectionState::Connecting;
};

}  // namespace

std::string SecondsText(std::chrono::milliseconds duration) {
    char text[32];
    std::snprintf(text, sizeof text, "%g s", static_cast<double>(duration.count()) / 1000.0);
    return text;
}

Messaging::EndPoint ConnectionSettings::CommandEndPoint() const {
    return WithKey(commandEndpoint, serverKey);
}

Messaging::EndPoint ConnectionSettings::NotificationEndPoint() const {
    return WithKey(notificationEndpoint, serverKey);
}

const CommandFamily& FamilyOf(const std::string& commandName, const CommandParams& params) {
    for (const CommandFamily& family : kFamilies) {
        try {
            family.makePayloadBuilder()->BuildPayload(commandName, params);
            return family;
        } catch (const std::invalid_argument& error) {
            if (std::string(error.what()) != kUnknownCommand) {
                return family;  // the name is known; the parameters are refused when sent
            }
        } catch (const std::exception&) {
            return family;
        }
    }
    throw CliError(ExitCode::Usage, "unknown command \"" + commandName + "\"");
}

Session::Session(ConnectionSettings settings) : settings(std::move(settings)) {}

Session::~Session() = default;

Client::CommandClient& Session::ClientOf(const CommandFamily& family) {
    auto& client = clients[&family];
    if (client) {
        return *client;
    }
    const Messaging::EndPoint endpoint = settings.CommandEndPoint();
    auto link = std::make_shared<LinkState>();
    auto messenger = std::make_unique<Messaging::Client::Messenger>(
        endpoint, Messaging::TransportOptions{}, [link](Messaging::ConnectionState state) {
            std::lock_guard<std::mutex> lock(link->mutex);
            link->state = state;
            link->changed.notify_all();
        });
    auto made = std::make_unique<Client::CommandClient>(
        std::move(messenger), family.makePayloadBuilder(), family.makeReplyBuilder());
    // A command sent on a link that is not up is dropped; wait for the link instead.
    std::unique_lock<std::mutex> lock(link->mutex);
    const bool up = link->changed.wait_for(lock, settings.timeout, [&] {
        return link->state == Messaging::ConnectionState::Connected;
    });
    lock.unlock();
    if (!up) {
        throw CliError(ExitCode::NoServer,
                       "no server at " + endpoint.Address() + ": the link did not come up within " +
                           SecondsText(settings.timeout) +
                           (endpoint.IsEncrypted() ? " (is the server key right?)" : ""));
    }
    client = std::move(made);
    return *client;
}

void Session::Connect(const std::string& commandName, const CommandParams& params) {
    ClientOf(FamilyOf(commandName, params));
}

Replies Session::Call(const std::string& commandName, const CommandParams& params,
                      const ReplyObserver& observer) {
    Client::CommandClient& client = ClientOf(FamilyOf(commandName, params));
    std::unique_ptr<Client::PendingCommandReply> pending;
    try {
        pending = client.Request(commandName, params);
    } catch (const std::exception& error) {
        throw CliError(ExitCode::BadInput,
                       commandName + ": the parameters cannot be sent: " + error.what());
    }
    if (!pending) {
        throw CliError(ExitCode::BadReply, commandName + ": the command could not be sent to " +
                                               settings.CommandEndPoint().Address());
    }
    using Kind = Client::PendingCommandReply::ItemKind;
    Replies replies;
    while (pending->IsPending()) {
        auto item = pending->Next(settings.timeout);
        if (item.kind == Kind::TimedOut) {
            throw CliError(
                ExitCode::TimedOut,
                "no reply to " + commandName + " within " + SecondsText(settings.timeout) +
                    (replies.empty() ? "" : " after " + std::to_string(replies.size()) + " parts"));
        }
        if (item.kind == Kind::Cancelled) {
            throw CliError(ExitCode::BadReply,
                           commandName + ": the link failed while waiting for the reply");
        }
        if (item.kind == Kind::NotSent) {
            throw CliError(ExitCode::BadReply,
                           commandName + ": not sent: the link to " +
                               settings.CommandEndPoint().Address() +
                               " is down; the command did not run and may be sent again");
        }
        if (item.kind == Kind::LinkLost) {
            throw CliError(ExitCode::BadReply,
                           commandName + ": the link to " + settings.CommandEndPoint().Address() +
                               " was lost before the reply; the command may have run");
        }
        if (item.kind == Kind::Overflowed) {
            throw CliError(ExitCode::BadReply,
                           commandName + ": the replies outgrew the client's budget and were "
                                         "dropped; the command may have run");
        }
        try {
            replies.push_back(pending->BuildReply(item));
        } catch (const std::exception& error) {
            throw CliError(ExitCode::BadReply, commandName + ": the reply (" +
                                                   item.message->GetHeader() +
                                                   ") cannot be decoded: " + error.what());
        }
        if (observer) {
            observer(*replies.back(), item.kind == Kind::Final);
        }
    }
    return replies;
}

}  // namespace Korvo::Plexis::Tessel::Cli

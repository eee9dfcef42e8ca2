#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <Korvo/Plexis/Tessel/Client/ZmqMessenger.h>
#include <Korvo/Common/Messaging/EndPoint.h>
#include <Korvo/Common/Messaging/TransportOptions.h>
#include <Korvo/Common/Serialization/PointerBuffer.h>
#include <Korvo/Plexis/Tessel/Client/CommandClient.h>

#include "support/RecordingLogger.h"
#include "support/TextCommands.h"
#include "support/ZmqPeers.h"

namespace Korvo::Testing {

using Common::Messaging::EndPoint;
using Common::Messaging::TransportOptions;
using Messenger = Plexis::Tessel::Client::ZmqMessenger;

/// Command clients over real sockets to peers inside the test, with the messaging log recorded.
class MessagingFixture : public ::testing::Test {
protected:
    using Client = Plexis::Tessel::Client::CommandClient;
    using Pending = Plexis::Tessel::Client::PendingCommandReply;
    using Kind = Pending::ItemKind;

    /// Commands wait for their server as long as a test waits for anything; retries stay quick.
    static TransportOptions Options() {
        TransportOptions options;
        options.sendWait = kPatience;
        options.reconnectIntervalMax = std::chrono::milliseconds(500);
        return options;
    }

    /// A messenger to `server` whose state changes go to `states` when given.
    static std::unique_ptr<Messenger> MessengerTo(const EndPoint& server,
                                                  const TransportOptions& options = Options(),
                                                  StateLog* states = nullptr) {
        Messenger::ConnectionStateHandler handler;
        if (states != nullptr) {
            handler = [states](ConnectionState state) { states->Record(state); };
        }
        return std::make_unique<Messenger>(server, options, std::move(handler));
    }

    static std::unique_ptr<Client> ClientOver(std::unique_ptr<Messenger> messenger) {
        return std::make_unique<Client>(std::move(messenger),
                                        std::make_shared<TextPayloadBuilder>(),
                                        std::make_shared<TextReplyBuilder>());
    }

    /// The next item of `pending`, failing the test instead of waiting forever.
    static Pending::Item NextOf(Pending& pending) {
        auto item = pending.Next(kPatience);
        EXPECT_NE(item.kind, Kind::TimedOut);
        return item;
    }

    /// The text of a reply item.
    static std::string TextOf(const Pending& pending, const Pending::Item& item) {
        return static_cast<TextReply&>(*pending.BuildReply(item)).text;
    }

    /// A view of `text`'s bytes, as a payload to send.
    static Common::Serialization::PointerBuffer Bytes(std::string& text) {
        return {reinterpret_cast<unsigned char*>(text.data()),
                static_cast<unsigned int>(text.size())};
    }

    /// How many messaging log records contain `text`.
    int Logged(const std::string& text) const { return CountLogged(*log, text); }

    std::shared_ptr<RecordingLogger> log = RecordedLogger("Messaging", ILogger::Trace);
};

}  // namespace Korvo::Testing

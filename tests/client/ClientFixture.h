#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

#include <Korvo/Plexis/Tessel/Client/CommandClient.h>

#include "support/InProcessMessenger.h"
#include "support/RecordingLogger.h"
#include "support/TextCommands.h"

namespace Korvo::Testing {

/// A CommandClient over an in-process link, with its log recorded at every level.
class ClientFixture : public ::testing::Test {
protected:
    using Client = Plexis::Tessel::Client::CommandClient;
    using Pending = Plexis::Tessel::Client::PendingCommandReply;
    using Kind = Pending::ItemKind;

    static constexpr std::chrono::milliseconds kPatience{30000};

    void SetUp() override {
        log = RecordedLogger("CommandClient", ILogger::Trace);
        server = std::make_shared<InProcessServer>();
        client = std::make_unique<Client>(std::make_unique<InProcessMessenger>(server),
                                          std::make_shared<TextPayloadBuilder>(),
                                          std::make_shared<TextReplyBuilder>());
    }

    void TearDown() override { client.reset(); }

    std::unique_ptr<Pending> Send(const std::string& text, const std::string& name = "Echo") {
        return client->Request(name, TextParams(text));
    }

    /// The next item of `pending`, failing the test instead of waiting forever.
    Pending::Item NextOf(Pending& pending) {
        auto item = pending.Next(kPatience);
        EXPECT_NE(item.kind, Kind::TimedOut);
        return item;
    }

    std::shared_ptr<RecordingLogger> log;
    std::shared_ptr<InProcessServer> server;
    std::unique_ptr<Client> client;
};

}  // namespace Korvo::Testing

#include <algorithm>
#include <atomic>
#include <random>
#include <thread>

#include "client/ClientFixture.h"

namespace Korvo::Testing {
namespace {

using ConcurrencyTest = ClientFixture;

// Many application threads send at once while the server answers in a shuffled order, some
// replies in parts: every request must get exactly its own answer, and the tickets must be unique.
TEST_F(ConcurrencyTest, EightThreadsOfAThousandRequestsGetTheirOwnReplies) {
    constexpr int kThreads = 8;
    constexpr int kRequests = 1000;
    constexpr std::size_t kTotal = kThreads * kRequests;

    std::atomic<bool> serving{true};
    std::thread answering([&] {
        std::mt19937 random(20261121);
        std::size_t answered = 0;
        while (answered < kTotal && serving) {
            auto batch = server->TakeSent(std::chrono::milliseconds(100));
            std::shuffle(batch.begin(), batch.end(), random);
            for (const auto& command : batch) {
                if (command.ticket % 3 == 0) {
                    server->Reply(command.ticket, "[part]Echo", command.payload);
                }
                server->Reply(command.ticket, "Echo", command.payload);
            }
            answered += batch.size();
        }
    });

    std::atomic<int> wrong{0};
    std::vector<std::vector<int>> tickets(kThreads);
    std::vector<std::thread> senders;
    for (int t = 0; t < kThreads; ++t) {
        senders.emplace_back([&, t] {
            for (int i = 0; i < kRequests; ++i) {
                const std::string text = std::to_string(t) + ":" + std::to_string(i);
                auto pending = Send(text);
                if (!pending) {
                    ++wrong;
                    continue;
                }
                tickets[t].push_back(pending->GetRequestId());
                for (;;) {
                    auto item = pending->Next(kPatience);
                    if (item.kind == Kind::Partial || item.kind == Kind::Final) {
                        auto reply = pending->BuildReply(item);
                        if (static_cast<TextReply&>(*reply).text != text) {
                            ++wrong;
                        }
                    }
                    if (item.kind != Kind::Partial) {
                        if (item.kind != Kind::Final) {
                            ++wrong;
                        }
                        break;
                    }
                }
            }
        });
    }
    for (auto& sender : senders) {
        sender.join();
    }
    serving = false;
    answering.join();

    EXPECT_EQ(wrong, 0);
    std::vector<int> all;
    for (const auto& perThread : tickets) {
        all.insert(all.end(), perThread.begin(), perThread.end());
    }
    std::sort(all.begin(), all.end());
    ASSERT_EQ(all.size(), kTotal);
    EXPECT_EQ(all.front(), 0);
    EXPECT_EQ(all.back(), static_cast<int>(kTotal) - 1);
    EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end());
}

// A payload builder slow enough that requests are often between their check of the client's state
// and their registration when Pause or Stop runs.
class SlowPayloadBuilder final : public Plexis::Tessel::Client::CommandParamsPayloadBuilder {
public:
    std::unique_ptr<Common::Serialization::Buffer> BuildPayload(
        const std::string& commandName, const CommandParams& params) override {
        std::this_thread::sleep_for(std::chrono::microseconds(500));
        return text.BuildPayload(commandName, params);
    }

private:
    TextPayloadBuilder text;
};

// Requests racing Pause(true) and Stop(): once either has returned nothing more is sent, and every
// handle handed out has already ended.
TEST_F(ConcurrencyTest, NoCommandLeavesAfterPauseOrStopReturnedAndEveryHandleHasEnded) {
    constexpr int kThreads = 4;
    for (const bool stop : {false, true}) {
        for (int round = 0; round < (stop ? 10 : 30); ++round) {
            server = std::make_shared<InProcessServer>();
            client = std::make_unique<Client>(std::make_unique<InProcessMessenger>(server),
                                              std::make_shared<SlowPayloadBuilder>(),
                                              std::make_shared<TextReplyBuilder>());
            std::atomic<bool> ended{false};
            std::atomic<int> started{0};
            std::vector<std::vector<std::unique_ptr<Pending>>> handles(kThreads);
            std::vector<std::thread> senders;
            for (int t = 0; t < kThreads; ++t) {
                senders.emplace_back([&, t] {
                    ++started;
                    while (!ended.load()) {
                        if (auto pending = Send("racing")) {
                            handles[t].push_back(std::move(pending));
                        }
                    }
                });
            }
            while (started.load() < kThreads || server->Sent().size() < 4) {
                std::this_thread::yield();
            }
            stop ? client->Stop() : client->Pause(true);
            const std::size_t sentBefore = server->Sent().size();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            ended = true;
            for (auto& sender : senders) {
                sender.join();
            }
            EXPECT_EQ(server->Sent().size(), sentBefore) << "stop " << stop << " round " << round;
            for (auto& perThread : handles) {
                for (auto& pending : perThread) {
                    ASSERT_EQ(pending->Next(std::chrono::milliseconds(0)).kind, Kind::Cancelled)
                        << "stop " << stop << " round " << round;
                }
            }
        }
    }
}

}  // namespace
}  // namespace Korvo::Testing

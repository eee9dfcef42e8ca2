// tessel against a server that takes a command and dies before answering: it says so at once,
// instead of waiting out its time-out.

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

#include "cli/ChildProcess.h"
#include "support/ZmqPeers.h"

namespace Korvo::Testing {
namespace {

using namespace std::chrono_literals;

TEST(LinkOutcomeTest, AServerDyingMidCommandEndsTesselAtOnceWithTheBadReplyCode) {
    auto server = std::make_unique<RouterPeer>();
    ChildProcess tessel({TESSEL_BINARY, "--commands", server->Address(), "--timeout", "60",
                         "ping"});
    ASSERT_TRUE(server->Receive(60s));
    const auto died = std::chrono::steady_clock::now();
    server.reset();
    EXPECT_EQ(tessel.Wait(60s), 6) << tessel.Err();
    EXPECT_LT(std::chrono::steady_clock::now() - died, 20s);
    EXPECT_NE(tessel.Err().find("may have run"), std::string::npos) << tessel.Err();
}

}  // namespace
}  // namespace Korvo::Testing

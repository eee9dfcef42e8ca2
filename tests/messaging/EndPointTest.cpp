#include <gtest/gtest.h>

#include <zmq.h>

#include <cstdio>
#include <stdexcept>

#include <Korvo/Common/Messaging/EndPoint.h>

namespace Korvo::Testing {
namespace {

using Common::Messaging::EndPoint;

TEST(EndPointTest, TextFormsParseAndMalformedOnesAreRefused) {
    const EndPoint plain("tcp://replay-1:5555");
    EXPECT_EQ(plain.Address(), "tcp://replay-1:5555");
    EXPECT_FALSE(plain.IsEncrypted());
    EXPECT_EQ(plain.ToString(), "tcp://replay-1:5555");

    char publicKey[41];
    char secretKey[41];
    ASSERT_EQ(zmq_curve_keypair(publicKey, secretKey), 0);
    unsigned char bytes[32];
    ASSERT_NE(zmq_z85_decode(bytes, publicKey), nullptr);
    std::string hex;
    for (const unsigned char byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", byte);
        hex += digits;
    }

    const EndPoint keyed(std::string("tcp://10.0.0.7:5556;curve=") + publicKey);
    EXPECT_EQ(keyed.Address(), "tcp://10.0.0.7:5556");
    EXPECT_EQ(keyed.ServerPublicKey(), publicKey);
    EXPECT_TRUE(keyed.IsEncrypted());
    EXPECT_EQ(EndPoint(keyed.ToString()), keyed);
    EXPECT_EQ(EndPoint("tcp://10.0.0.7:5556", hex), keyed);
    EXPECT_EQ(EndPoint("tcp://10.0.0.7:5556;curve=" + hex), keyed);
    EXPECT_NE(EndPoint("tcp://10.0.0.7:5556"), keyed);

    for (const char* good :
         {"tcp://[::1]:5555", "ipc:///run/tessel/commands", "inproc://commands"}) {
        EXPECT_EQ(EndPoint(good).Address(), good);
    }
    const std::string notZ85 = "\"" + std::string(publicKey).substr(1);
    for (const std::string& bad :
         {std::string("replay-1:5555"), std::string("udp://replay-1:5555"), std::string("tcp://"),
          std::string("tcp://replay-1"), std::string("tcp://:5555"),
          std::string("tcp://replay-1:0"), std::string("tcp://replay-1:70000"),
          std::string("tcp://replay-1:55x5"), std::string("tcp://::1:5555"),
          std::string("tcp://[::1:5555"), std::string("tcp://[]:5555"),
          std::string("tcp://[replay-1]:5555"), std::string("tcp://[::1]x:5555"),
          std::string("tcp://replay-1:5555;curve=short"),
          std::string("tcp://replay-1:5555;curve=") + notZ85,
          std::string("tcp://replay-1:5555;curve=") + std::string(64, 'g')}) {
        EXPECT_THROW(EndPoint{bad}, std::invalid_argument) << bad;
    }
}

}  // namespace
}  // namespace Korvo::Testing

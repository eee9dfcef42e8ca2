// Crafted and corrupt payloads: each must fail as an ordinary parse failure, without a large
// allocation and without reading outside its bytes. Every input sits in a heap block of exactly
// its size, so that the AddressSanitizer build reports any read past the end.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include <malloc.h>

#include <thrift/Thrift.h>
#include <thrift/protocol/TProtocolException.h>
#include <thrift/transport/TTransportException.h>

#include <Korvo/Common/Messaging/Message.h>
#include <Korvo/Common/Serialization/DecodeBudget.h>
#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Common/Serialization/InvalidFormatException.h>
#include <Korvo/Common/Serialization/PointerBuffer.h>
#include <Korvo/Common/Serialization/Thrift/BoundedCompactProtocol.h>
#include <Korvo/Plexis/Tessel/Client/ChannelCommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>

#include "client/NotificationDispatch.h"
#include "support/HostileFrames.h"
#include "support/SamplePayloads.h"

// The largest single C++ allocation made by this thread while watching, and the most bytes it
// held at once beyond what it held when watching began. The decoder's containers and strings all
// allocate through operator new. Every form is replaced, so that all of them allocate and free
// alike (the sanitizers check that they match).
namespace {
thread_local bool watching = false;
thread_local std::size_t largestAllocation = 0;
thread_local std::int64_t heldBytes = 0;
thread_local std::int64_t mostHeldBytes = 0;

void* Allocate(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) {
    if (watching && size > largestAllocation) {
        largestAllocation = size;
    }
    void* block = nullptr;
    if (posix_memalign(&block, std::max(alignment, sizeof(void*)), size == 0 ? 1 : size) != 0) {
        throw std::bad_alloc();
    }
    if (watching) {
        heldBytes += static_cast<std::int64_t>(malloc_usable_size(block));
        mostHeldBytes = std::max(mostHeldBytes, heldBytes);
    }
    return block;
}

void Release(void* block) noexcept {
    if (watching && block != nullptr) {
        heldBytes -= static_cast<std::int64_t>(malloc_usable_size(block));
    }
    std::free(block);
}

void* AllocateOrNull(std::size_t size, std::size_t alignment) noexcept {
    try {
        return Allocate(size, alignment);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
}  // namespace

void* operator new(std::size_t size) {
    return Allocate(size);
}
void* operator new[](std::size_t size) {
    return Allocate(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return Allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return Allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return AllocateOrNull(size, alignof(std::max_align_t));
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return AllocateOrNull(size, alignof(std::max_align_t));
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return AllocateOrNull(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return AllocateOrNull(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* block) noexcept {
    Release(block);
}
void operator delete[](void* block) noexcept {
    Release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    Release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    Release(block);
}
void operator delete(void* block, std::align_val_t) noexcept {
    Release(block);
}
void operator delete[](void* block, std::align_val_t) noexcept {
    Release(block);
}
void operator delete(void* block, std::size_t, std::align_val_t) noexcept {
    Release(block);
}
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept {
    Release(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    Release(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    Release(block);
}
void operator delete(void* block, std::align_val_t, const std::nothrow_t&) noexcept {
    Release(block);
}
void operator delete[](void* block, std::align_val_t, const std::nothrow_t&) noexcept {
    Release(block);
}

namespace Korvo::Testing {
namespace {

using apache::thrift::protocol::TProtocolException;
using apache::thrift::transport::TMemoryBuffer;
using Common::Serialization::Buffer;
using Common::Serialization::InvalidFormatException;
using Common::Serialization::PointerBuffer;
using Common::Serialization::Thrift::BoundedCompactProtocol;
using Common::Serialization::Thrift::PermissiveMemoryBuffer;
namespace Wire = Plexis::Tessel::Serialization::Thrift::Commands::Generated;
using namespace std::string_literals;

// No hostile frame may cost more than this in one allocation: far below what they claim, and
// below the largest frame itself (100,000 bytes).
constexpr std::size_t kAllocationBound = 4096;

// A heap block of exactly the bytes' size.
std::unique_ptr<Buffer> ExactCopy(const std::string& bytes) {
    auto* copy = static_cast<unsigned char*>(std::malloc(bytes.empty() ? 1 : bytes.size()));
    std::memcpy(copy, bytes.data(), bytes.size());
    return PointerBuffer::AdoptMalloced(copy, static_cast<unsigned int>(bytes.size()));
}

// What `attempt` throws, as "<kind>: <what()>", and the largest allocation it made.
template <class Attempt>
std::string FailureOf(Attempt&& attempt, std::size_t& largest) {
    std::string failure = "(no exception)";
    largestAllocation = 0;
    heldBytes = 0;
    mostHeldBytes = 0;
    watching = true;
    try {
        attempt();
    } catch (const std::invalid_argument& error) {
        failure = std::string("invalid_argument: ") + error.what();
    } catch (const InvalidFormatException& error) {
        failure = std::string("InvalidFormatException: ") + error.what();
    } catch (const std::exception& error) {
        failure = std::string("other: ") + error.what();
    }
    watching = false;
    largest = largestAllocation;
    return failure;
}

TEST(HostileInput, EveryReplyBuilderRejectsItAsUnparsableWithoutALargeAllocation) {
    Plexis::Tessel::Client::ChannelCommandReplyBuilder builder;
    for (const HostileFrame& frame : HostileFrames()) {
        const auto buffer = ExactCopy(frame.bytes);
        std::size_t largest = 0;
        EXPECT_EQ(FailureOf([&] { builder.BuildCommandReply(frame.replyType, *buffer); }, largest),
                  "invalid_argument: The input could not be parsed by the deserializer")
            << frame.name;
        EXPECT_LE(largest, kAllocationBound) << frame.name;
    }
    // The data builder shares the decoding: its own names fail the same way.
    Plexis::Tessel::Client::DataCommandReplyBuilder data;
    const auto claim = ExactCopy("\x29\xFC\xFF\xFF\xFF\xFF\x07");  // 2^31-1 results
    std::size_t largest = 0;
    EXPECT_EQ(FailureOf([&] { data.BuildCommandReply("[part]ClipCommandReply", *claim); }, largest),
              "invalid_argument: The input could not be parsed by the deserializer");
    EXPECT_LE(largest, kAllocationBound);
}

// Valid frames of empty elements: each element costs the frame one byte or two and the decoded
// reply its whole in-memory size. Decoding them stops at the budget, before its memory is taken.
TEST(HostileInput, FramesOfEmptyElementsFailWithinTheDecodeBudget) {
    constexpr std::size_t kElements = 65536;
    const std::string count = "\x80\x80\x04"s;  // 65536
    const std::string empties(kElements, '\x00');
    const std::string emptyPairs(2 * kElements, '\x00');
    Plexis::Tessel::Client::ChannelCommandReplyBuilder channel;
    Plexis::Tessel::Client::DataCommandReplyBuilder data;
    struct Case {
        Plexis::Tessel::Client::CommandReplyBuilder* builder;
        const char* replyType;
        std::string bytes;
    } cases[] = {
        {&data, "GetTrainsCommandReply", "\x39\xFC"s + count + empties + "\x00"s},
        {&data, "GetClipsCommandReply", "\x39\xFC"s + count + empties + "\x00"s},
        {&data, "GetServersCommandReply", "\x29\xFC"s + count + empties + "\x00"s},
        {&channel, "GetChannelsCommandReply", "\x2B"s + count + "\xCC"s + emptyPairs + "\x00"s},
        {&channel, "GetMultiviewerDataCommandReply",
         "\x3B"s + count + "\xCC"s + emptyPairs + "\x00"s},
    };
    for (const Case& frame : cases) {
        const auto buffer = ExactCopy(frame.bytes);
        std::size_t largest = 0;
        EXPECT_EQ(FailureOf([&] { frame.builder->BuildCommandReply(frame.replyType, *buffer); },
                            largest),
                  "invalid_argument: The input could not be parsed by the deserializer")
            << frame.replyType;
        EXPECT_LE(static_cast<std::uint64_t>(mostHeldBytes),
                  Common::Serialization::DecodeBudget().For(frame.bytes.size()))
            << frame.replyType;
    }
}

TEST(HostileInput, TheDeserializerThrowsInvalidFormat) {
    for (const char* bytes : {"\x29\xFC\xFF\xFF\xFF\xFF\x07", "\x29\xF7\x80\x80\x80\x80\x02"}) {
        const auto buffer = ExactCopy(bytes);
        Wire::ChannelCommandReply record;
        std::size_t largest = 0;
        EXPECT_EQ(FailureOf(
                      [&] {
                          Common::Serialization::DeserializerImpl<Wire::ChannelCommandReply>()
                              .Deserialize(*buffer, record);
                      },
                      largest),
                  "InvalidFormatException: The input could not be parsed by the deserializer");
        EXPECT_LE(largest, kAllocationBound);
    }
}

TEST(HostileInput, NotificationPayloadsFailBeforeAnyCallback) {
    Plexis::Tessel::Client::NotificationHandlers handlers;
    int calls = 0;
    handlers.serverAddedHandlers.push_back([&](const auto&) { ++calls; });
    handlers.serverStatusHandlers.push_back([&](auto, const auto&) { ++calls; });
    const Plexis::Tessel::Client::Detail::NotificationDispatch dispatch;
    for (const HostileFrame& frame : HostileFrames()) {
        const Common::Messaging::Message message(Common::Messaging::Origin(0), "ServerAdded",
                                                 frame.bytes);
        std::size_t largest = 0;
        const std::string failure = FailureOf([&] { dispatch(handlers, message); }, largest);
        // A few frames are a valid encoding of a server notification's prefix up to where they
        // fail; all of them must fail.
        EXPECT_EQ(failure.rfind("InvalidFormatException: ", 0), 0u)
            << frame.name << ": " << failure;
        EXPECT_LE(largest, kAllocationBound) << frame.name;
    }
    EXPECT_EQ(calls, 0);
}

// The bounded protocol over exactly `bytes`, configured as the deserializer configures it.
struct Reader {
    explicit Reader(const std::string& bytes)
        : copy(ExactCopy(bytes)),
          frame(std::make_shared<PermissiveMemoryBuffer>(
              copy->Pointer(), copy->Size(), TMemoryBuffer::OBSERVE,
              Common::Serialization::Detail::FrameConfiguration(copy->Size()))),
          protocol(frame, Common::Serialization::DecodeBudget().For(copy->Size())) {}
    std::unique_ptr<Buffer> copy;
    std::shared_ptr<PermissiveMemoryBuffer> frame;
    BoundedCompactProtocol protocol;
};

template <class Exception>
int ErrorType(const std::function<void()>& read) {
    try {
        read();
    } catch (const Exception& error) {
        return error.getType();
    }
    return -1;
}

TEST(BoundedCompactProtocol, SizesAreCheckedAgainstTheBytesLeftBeforeAllocating) {
    // The string length is refused before its buffer grows, even on the skipping path.
    Reader string("\xFF\xFF\xFF\xFF\x07"s);
    std::string text;
    EXPECT_EQ(ErrorType<TProtocolException>([&] { string.protocol.readString(text); }),
              TProtocolException::SIZE_LIMIT);
    Reader skipped("\xFF\xFF\xFF\xFF\x07"s);
    EXPECT_EQ(ErrorType<TProtocolException>(
                  [&] { skipped.protocol.skip(apache::thrift::protocol::T_STRING); }),
              TProtocolException::SIZE_LIMIT);

    // Three elements of any claimed type need three bytes: zero-sized struct elements too.
    using apache::thrift::transport::TTransportException;
    apache::thrift::protocol::TType type;
    uint32_t size = 0;
    Reader threeStructs("\x3C\x00\x00"s);
    EXPECT_EQ(
        ErrorType<TTransportException>([&] { threeStructs.protocol.readListBegin(type, size); }),
        TTransportException::END_OF_FILE);
    Reader threeOfThree("\x3C\x00\x00\x00"s);
    threeOfThree.protocol.readListBegin(type, size);
    EXPECT_EQ(size, 3u);

    // Nested containers together claim no more elements than the frame has bytes: the outer
    // list claims 3 of 4 bytes, the inner one 2 more.
    Reader nested("\x3C\x2C\x00\x00"s);
    nested.protocol.readListBegin(type, size);
    EXPECT_EQ(ErrorType<TProtocolException>([&] { nested.protocol.readListBegin(type, size); }),
              TProtocolException::SIZE_LIMIT);

    // Structs nest as deeply as the deepest record and no deeper, on the skipping path too:
    // each 0x1C opens one more struct (field 1, a struct), each 0x00 closes one.
    const auto nesting = [](int depth) {
        return std::string(depth - 1, '\x1C') + std::string(depth, '\x00');
    };
    constexpr int limit = Common::Serialization::kDeepestRecordNesting;
    Reader deepest(nesting(limit));
    EXPECT_EQ(deepest.protocol.skip(apache::thrift::protocol::T_STRUCT), 2u * limit - 1);
    Reader deeper(nesting(limit + 1));
    EXPECT_EQ(ErrorType<TProtocolException>(
                  [&] { deeper.protocol.skip(apache::thrift::protocol::T_STRUCT); }),
              TProtocolException::DEPTH_LIMIT);
}

TEST(HostileInput, FilledRepliesAndNotificationsStillDecodeWhole) {
    Plexis::Tessel::Client::ChannelCommandReplyBuilder channel;
    Plexis::Tessel::Client::DataCommandReplyBuilder data;
    for (const SamplePayload& reply : SampleReplyPayloads()) {
        const auto buffer = ExactCopy(reply.bytes);
        int built = 0;
        for (Plexis::Tessel::Client::CommandReplyBuilder* builder :
             std::initializer_list<Plexis::Tessel::Client::CommandReplyBuilder*>{&channel, &data}) {
            try {
                built += builder->BuildCommandReply(reply.name, *buffer) != nullptr;
            } catch (const std::invalid_argument& error) {
                EXPECT_NE(std::string(error.what()).find("Unknown command type"), std::string::npos)
                    << reply.name << ": " << error.what();
            }
        }
        EXPECT_GE(built, 1) << reply.name;
    }
    Plexis::Tessel::Client::NotificationHandlers handlers;
    std::vector<std::string> delivered;
    handlers.clipCommandHandlers.push_back([&](auto type, const auto&) {
        delivered.push_back("clip command " + std::to_string(type));
    });
    const Plexis::Tessel::Client::Detail::NotificationDispatch dispatch;
    std::size_t notifications = 0;
    for (const SamplePayload& notification : SampleNotificationPayloads()) {
        const Common::Messaging::Message message(Common::Messaging::Origin(0), notification.name,
                                                 notification.bytes);
        EXPECT_TRUE(dispatch(handlers, message)) << notification.name;
        ++notifications;
    }
    EXPECT_EQ(notifications, 17u);
    EXPECT_EQ(delivered.size(), 11u);  // the clip and angles-group family
}

TEST(HostileInput, BytesAfterTheStopFieldAreIgnored) {
    Plexis::Tessel::Client::ChannelCommandReplyBuilder builder;
    const auto trailing = ExactCopy(std::string("\x00garbage", 8));
    EXPECT_EQ(builder.BuildCommandReply("SuccessReply", *trailing)->GetType(), 1);
}

}  // namespace
}  // namespace Korvo::Testing

// The messenger's reading of received frames. Input: a frame count (first byte, 0 to 4), then
// for each of the first three frames a length byte and that many bytes (the last frame takes
// whatever is left). A reply is valid exactly when there are three frames and the ticket frame
// has 4 bytes, a notification exactly when there are three frames; a valid message carries the
// frames' contents, and a command's frames read back as the same ticket, name and payload.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include <Korvo/Common/Serialization/PointerBuffer.h>

#include "messaging/Envelope.h"

namespace {

using namespace Korvo::Common::Messaging;

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

bool Carries(const Message& message, const std::string& header, const std::string& body) {
    return message.IsValid() && message.GetHeader() == header &&
           message.DataSize() == body.size() &&
           (body.empty() || std::memcmp(message.Data(), body.data(), body.size()) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::size_t count = data[0] % 5;
    std::string frames[Detail::kEnvelopeFrames];
    std::size_t at = 1;
    for (std::size_t i = 0; i < std::min(count, Detail::kEnvelopeFrames); ++i) {
        std::size_t length = size - at;
        if (i + 1 < std::min(count, Detail::kEnvelopeFrames) && at < size) {
            const std::size_t claimed = data[at];
            ++at;
            length = std::min(claimed, size - at);
        }
        frames[i].assign(reinterpret_cast<const char*>(data + at), length);
        at += length;
    }
    const auto received = [&] {
        Detail::Frames parts;
        for (std::size_t i = 0; i < std::min(count, Detail::kEnvelopeFrames); ++i) {
            parts.parts[i] = zmq::message_t(frames[i].data(), frames[i].size());
        }
        parts.count = count;
        return parts;
    };

    std::string problem;
    Detail::Frames asReply = received();
    const auto reply = Detail::ReplyFromFrames(asReply, problem);
    const bool validReply = count == Detail::kEnvelopeFrames && frames[0].size() == 4;
    Require(reply->IsValid() == validReply && validReply == problem.empty());
    if (validReply) {
        Require(Carries(*reply, frames[1], frames[2]));
        // The ticket reads back through the command encoding.
        Korvo::Common::Serialization::PointerBuffer payload(
            reinterpret_cast<unsigned char*>(frames[2].data()),
            static_cast<unsigned int>(frames[2].size()));
        auto command = Detail::CommandFrames(reply->GetOrigin().GetTicket(), frames[1], payload);
        Require(command[0].to_string() == frames[0] && command[1].to_string() == frames[1] &&
                command[2].to_string() == frames[2]);
    }

    problem.clear();
    std::string topic;
    Detail::Frames asNotification = received();
    const auto notification = Detail::NotificationFromFrames(asNotification, topic, problem);
    const bool validNotification = count == Detail::kEnvelopeFrames;
    Require(notification->IsValid() == validNotification && validNotification == problem.empty());
    if (validNotification) {
        Require(topic == frames[0] && Carries(*notification, frames[1], frames[2]));
    }
    return 0;
}

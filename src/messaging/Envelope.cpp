#include "messaging/Envelope.h"

#include <cstdint>
#include <utility>

namespace Korvo::Common::Messaging {

struct Message::Body {
    zmq::message_t bytes;
};

Message::Message(Origin origin, std::string header, std::unique_ptr<Body> body, bool valid)
    : origin(origin),
      header(std::move(header)),
      body(std::move(body)),
      valid(valid),
      view(this->body ? static_cast<unsigned char*>(this->body->bytes.data()) : nullptr,
           this->body ? static_cast<unsigned int>(this->body->bytes.size()) : 0) {}

Message::Message(Origin origin, std::string header, const std::string& data)
    : Message(origin, std::move(header),
              std::make_unique<Body>(Body{zmq::message_t(data.data(), data.size())}), true) {}

Message::~Message() = default;

namespace Detail {
namespace {

std::string FrameCountProblem(std::size_t count) {
    return std::to_string(count) + " frames instead of " + std::to_string(kEnvelopeFrames);
}

}  // namespace

std::unique_ptr<Message> MessageFactory::Valid(int ticket, std::string header,
                                               zmq::message_t&& body) {
    return std::unique_ptr<Message>(
        new Message(Origin(ticket), std::move(header),
                    std::make_unique<Message::Body>(Message::Body{std::move(body)}), true));
}

std::unique_ptr<Message> MessageFactory::Invalid() {
    return std::unique_ptr<Message>(new Message(Origin(0), std::string(), nullptr, false));
}

std::array<zmq::message_t, kEnvelopeFrames> CommandFrames(int ticket, const std::string& name,
                                                          const Serialization::Buffer& payload) {
    // Byte by byte, so the frame is little-endian whatever the host's byte order.
    const auto bits = static_cast<std::uint32_t>(ticket);
    const unsigned char ticketBytes[kTicketSize] = {
        static_cast<unsigned char>(bits), static_cast<unsigned char>(bits >> 8),
        static_cast<unsigned char>(bits >> 16), static_cast<unsigned char>(bits >> 24)};
    return {zmq::message_t(ticketBytes, kTicketSize), zmq::message_t(name.data(), name.size()),
            zmq::message_t(payload.Pointer(), payload.Size())};
}

std::unique_ptr<Message> ReplyFromFrames(Frames& frames, std::string& problem) {
    if (frames.count != kEnvelopeFrames) {
        problem = FrameCountProblem(frames.count);
        return MessageFactory::Invalid();
    }
    const zmq::message_t& ticketFrame = frames.parts[0];
    if (ticketFrame.size() != kTicketSize) {
        problem = "a ticket frame of " + std::to_string(ticketFrame.size()) + " bytes instead of " +
                  std::to_string(kTicketSize);
        return MessageFactory::Invalid();
    }
    const auto* bytes = static_cast<const unsigned char*>(ticketFrame.data());
    const std::uint32_t bits = std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8 |
                               std::uint32_t{bytes[2]} << 16 | std::uint32_t{bytes[3]} << 24;
    return MessageFactory::Valid(static_cast<int>(bits), frames.parts[1].to_string(),
                                 std::move(frames.parts[2]));
}

std::unique_ptr<Message> NotificationFromFrames(Frames& frames, std::string& topic,
                                                std::string& problem) {
    if (frames.count != kEnvelopeFrames) {
        problem = FrameCountProblem(frames.count);
        return MessageFactory::Invalid();
    }
    topic = frames.parts[0].to_string();
    return MessageFactory::Valid(0, frames.parts[1].to_string(), std::move(frames.parts[2]));
}

}  // namespace Detail
}  // namespace Korvo::Common::Messaging

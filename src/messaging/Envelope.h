#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>

#include <zmq.hpp>

#include <Korvo/Common/Messaging/Message.h>
#include <Korvo/Common/Serialization/Buffer.h>

namespace Korvo::Common::Messaging::Detail {

/// Every well-formed message, command, reply or notification, has exactly three frames.
inline constexpr std::size_t kEnvelopeFrames = 3;
/// The ticket frame: a signed 32-bit integer, least significant byte first.
inline constexpr std::size_t kTicketSize = 4;

/// The frames of one received message: the first three are kept, the rest only counted.
struct Frames {
    std::array<zmq::message_t, kEnvelopeFrames> parts;
    std::size_t count = 0;
};

/// Builds `Message`s; the only code that reaches their private constructor.
struct MessageFactory {
    /// A valid message whose body is the bytes of `body`, which it keeps.
    static std::unique_ptr<Message> Valid(int ticket, std::string header, zmq::message_t&& body);
    /// An invalid message: no header, no bytes.
    static std::unique_ptr<Message> Invalid();
};

/// The three frames of a command: ticket, command name, payload (copied into the frame, since
/// the caller releases it as soon as the send returns).
std::array<zmq::message_t, kEnvelopeFrames> CommandFrames(int ticket, const std::string& name,
                                                          const Serialization::Buffer& payload);

/// The reply carried by `frames`. Invalid, with `problem` saying why, unless there are exactly
/// three frames and the first is 4 bytes long.
std::unique_ptr<Message> ReplyFromFrames(Frames& frames, std::string& problem);

/// The notification carried by `frames`, its topic in `topic`. Invalid, with `problem` saying
/// why, unless there are exactly three frames.
std::unique_ptr<Message> NotificationFromFrames(Frames& frames, std::string& topic,
                                                std::string& problem);

}  // namespace Korvo::Common::Messaging::Detail

#pragma once

#include <memory>
#include <string>

#include <Korvo/Common/Messaging/Origin.h>
#include <Korvo/Common/Serialization/PointerBuffer.h>

namespace Korvo::Common::Messaging {

namespace Detail {
struct MessageFactory;
}

/// One message received from a server: a header text (the reply or notification type name), the
/// body bytes (an encoded record) and the origin (for a reply, the ticket of the request it
/// answers; 0 for a notification). The bytes stay in the buffer the transport received them in;
/// nothing is copied after reception.
///
/// Immutable once received, so any thread may read it. Owned through `std::unique_ptr`; the byte
/// views (`Data`, `GetPayload`) are valid while the message lives.
class Message final {
public:
    /// A valid message holding a copy of `data`; for tests and for transports of one's own.
    Message(Origin origin, std::string header, const std::string& data);

    ~Message();

    Message(const Message&) = delete;
    Message& operator=(const Message&) = delete;

    /// Start of the body bytes; may be null when `DataSize()` is 0.
    const unsigned char* Data() const { return view.Pointer(); }

    /// Number of body bytes.
    unsigned int DataSize() const { return view.Size(); }

    /// The body bytes as a `Buffer`.
    const Serialization::Buffer& GetPayload() const { return view; }

    /// The reply or notification type name; "[part]"-prefixed for one part of a longer reply.
    const std::string& GetHeader() const { return header; }

    /// Carries the ticket of the request a reply answers.
    const Origin& GetOrigin() const { return origin; }

    /// False for what a malformed envelope became: no header, no bytes, ticket 0.
    bool IsValid() const { return valid; }

private:
    friend struct Detail::MessageFactory;
    struct Body;  // the received frame that owns the bytes

    Message(Origin origin, std::string header, std::unique_ptr<Body> body, bool valid);

    Origin origin;
    std::string header;
    std::unique_ptr<Body> body;
    bool valid;
    Serialization::PointerBuffer view;
};

}  // namespace Korvo::Common::Messaging

#pragma once

#include <string>

#include <Korvo/Common/Messaging/Origin.h>
#include <Korvo/Common/Serialization/Buffer.h>

namespace Korvo::Plexis::Tessel::Client {

/// The header prefix that marks one part of a reply sent in several messages.
inline constexpr char kPartialReplyPrefix[] = "[part]";

/// Whether `header` begins with "[part]".
inline bool IsPartialReplyHeader(const std::string& header) noexcept {
    return header.compare(0, sizeof kPartialReplyPrefix - 1, kPartialReplyPrefix) == 0;
}

/// One message received from the server: a header text, the data bytes and the origin (the
/// ticket of the request it answers). Owned through `std::unique_ptr<BaseMessage>`; accessors
/// may be called from any thread but the message is not modified after it is received.
class BaseMessage {
public:
    virtual ~BaseMessage() = default;

    /// Start of the data bytes (the encoded reply record); may be null when `DataSize()` is 0.
    virtual const unsigned char* Data() const = 0;

    /// False for a placeholder that carries no reply (for example a malformed frame).
    virtual bool IsValid() const = 0;

    /// Number of data bytes.
    virtual unsigned int DataSize() const = 0;

    /// The data bytes as a `Buffer` view, valid as long as the message lives.
    virtual const Common::Serialization::Buffer& GetPayload() const = 0;

    /// The header: the reply type name, "[part]"-prefixed for one part of a reply that further
    /// messages of the same ticket follow.
    virtual const std::string& GetHeader() const = 0;

    /// The origin; its `GetTicket()` is the ticket of the request this message answers.
    virtual const Common::Messaging::Origin& GetOrigin() const = 0;
};

}  // namespace Korvo::Plexis::Tessel::Client

#pragma once

#include <memory>
#include <string>

#include <Korvo/Common/Serialization/Buffer.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::Client {

/// Turns a reply's type name and bytes into a domain reply. Implementations are stateless and
/// may be called from several threads at once.
class CommandReplyBuilder {
public:
    virtual ~CommandReplyBuilder() = default;

    /// A new reply, never null. Throws `std::invalid_argument` for an unknown type name, a null
    /// buffer, undecodable bytes or a failed conversion. The bytes are only read.
    virtual std::unique_ptr<HighLevelOperations::Commands::CommandReply> BuildCommandReply(
        const std::string& replyType, const Common::Serialization::Buffer& buffer) = 0;
};

}  // namespace Korvo::Plexis::Tessel::Client

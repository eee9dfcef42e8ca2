#pragma once

#include <memory>
#include <string>

#include <Korvo/Plexis/Tessel/Client/CommandReplyBuilder.h>

namespace Korvo::Plexis::Tessel::Client {

/// Builds the domain replies of the channel commands' replies: "SuccessReply", "FailureReply",
/// "UnknownCommand", "ChannelCommandReply" (also "[part]ChannelCommandReply"),
/// "GetChannelsCommandReply" and "GetMultiviewerDataCommandReply".
/// Stateless; may be called from several threads at once.
class ChannelCommandReplyBuilder final : public CommandReplyBuilder {
public:
    /// A new reply (never null) whose `GetType()` tells its class. Every failure is a
    /// `std::invalid_argument`: an unknown type name
    /// ("Korvo/Plexis/Tessel/Client/ChannelCommandReplyBuilder:BuildCommandReply: Unknown command
    /// type."), a null buffer ("...:ThriftBufferToResponse: The response object is not valid - null
    /// buffer."), undecodable bytes ("The input could not be parsed by the deserializer") or a
    /// failed conversion (the converter's message). The bytes are only read.
    std::unique_ptr<HighLevelOperations::Commands::CommandReply> BuildCommandReply(
        const std::string& replyType, const Common::Serialization::Buffer& buffer) override;
};

}  // namespace Korvo::Plexis::Tessel::Client

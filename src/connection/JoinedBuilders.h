#pragma once

// One payload builder and one reply builder for both command families, so that one command link
// carries every command: each command or reply name goes to the builder of its family, as the
// command and reply tables say.

#include <memory>
#include <string>

#include <Korvo/Plexis/Tessel/Client/CommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/CommandReplyBuilder.h>

namespace Korvo::Plexis::Tessel::Client::Detail {

class JoinedPayloadBuilder final : public CommandParamsPayloadBuilder {
public:
    /// Throws "Unknown command type." for a name of neither family.
    std::unique_ptr<Common::Serialization::Buffer> BuildPayload(
        const std::string& commandName,
        const HighLevelOperations::Commands::CommandParams& params) override;
};

class JoinedReplyBuilder final : public CommandReplyBuilder {
public:
    /// The data family's builder for the replies only data commands receive, the channel
    /// family's for every other name (it reports an unknown one).
    std::unique_ptr<HighLevelOperations::Commands::CommandReply> BuildCommandReply(
        const std::string& replyType, const Common::Serialization::Buffer& buffer) override;
};

/// Appends the lists of `part` to `into`, both of class `type` (a reply class that may come in
/// parts). Throws `std::invalid_argument` when they differ or cannot be joined, and what the
/// class throws when the joined lists do not fit it.
void JoinReplies(HighLevelOperations::Commands::CommandReply& into,
                 HighLevelOperations::Commands::CommandReply&& part);

}  // namespace Korvo::Plexis::Tessel::Client::Detail

#pragma once

#include <memory>
#include <string>

#include <Korvo/Plexis/Tessel/Client/CommandReplyBuilder.h>

namespace Korvo::Plexis::Tessel::Client {

/// Builds the domain replies of the data commands' replies: "SuccessReply", "FailureReply",
/// "UnknownCommand", "ClipCommandReply", "PlaylistCommandReply", "GetClipsCommandReply",
/// "GetTrainsCommandReply", "GetPlaylistsCommandReply", "GetServersCommandReply",
/// "GetAnglesGroupsCommandReply" and "AnglesGroupCommandReply"; the "[part]" prefix is accepted
/// before the clip, playlist, get-clips, get-angles-groups and angles-group replies only.
/// Stateless; may be called from several threads at once.
class DataCommandReplyBuilder final : public CommandReplyBuilder {
public:
    /// A new reply (never null) whose `GetType()` tells its class. Every failure is a
    /// `std::invalid_argument`: an unknown type name
    /// ("Korvo/Plexis/Tessel/Client/DataCommandReplyBuilder:BuildCommandReply: Unknown command
    /// type."), a null buffer ("...:ThriftBufferToResponse: The response object is not valid - null
    /// buffer."), undecodable bytes ("The input could not be parsed by the deserializer") or a
    /// failed conversion (the converter's message). The bytes are only read.
    std::unique_ptr<HighLevelOperations::Commands::CommandReply> BuildCommandReply(
        const std::string& replyType, const Common::Serialization::Buffer& buffer) override;
};

}  // namespace Korvo::Plexis::Tessel::Client

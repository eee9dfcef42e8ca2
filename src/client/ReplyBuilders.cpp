#include <Korvo/Plexis/Tessel/Client/ChannelCommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>

#include "client/BuilderTables.h"

namespace Korvo::Plexis::Tessel::Client {
namespace {

namespace Domain = HighLevelOperations::Commands;
namespace Wire = Serialization::Thrift::Commands::Generated;
namespace Converters = Serialization::Thrift::Commands;

#define KORVO_REPLY_ROW(name, acceptsPart, reply, converter) \
    { name, acceptsPart, &Tables::Decode<Domain::reply, Wire::reply, Converters::converter> }

// In the order in which the names are compared. "UnknownCommand" announces the
// UnknownCommandReply record; only the rows marked true also accept the "[part]" prefix.
const Tables::ReplyRow kChannelReplies[] = {
    KORVO_REPLY_ROW("SuccessReply", false, SuccessReply, ThriftToSuccessReplyConverter),
    KORVO_REPLY_ROW("FailureReply", false, FailureReply, ThriftToFailureReplyConverter),
    KORVO_REPLY_ROW("UnknownCommand", false, UnknownCommandReply,
                    ThriftToUnknownCommandReplyConverter),
    KORVO_REPLY_ROW("ChannelCommandReply", true, ChannelCommandReply,
                    ThriftToChannelCommandReplyConverter),
    KORVO_REPLY_ROW("GetChannelsCommandReply", false, GetChannelsCommandReply,
                    GetChannelsCommandReplyFromThriftConverter),
    KORVO_REPLY_ROW("GetMultiviewerDataCommandReply", false, GetMultiviewerDataCommandReply,
                    ThriftToGetMultiviewerDataCommandReplyConverter),
};

const Tables::ReplyRow kDataReplies[] = {
    KORVO_REPLY_ROW("SuccessReply", false, SuccessReply, ThriftToSuccessReplyConverter),
    KORVO_REPLY_ROW("FailureReply", false, FailureReply, ThriftToFailureReplyConverter),
    KORVO_REPLY_ROW("UnknownCommand", false, UnknownCommandReply,
                    ThriftToUnknownCommandReplyConverter),
    KORVO_REPLY_ROW("ClipCommandReply", true, ClipCommandReply, ThriftToClipCommandReplyConverter),
    KORVO_REPLY_ROW("PlaylistCommandReply", true, PlaylistCommandReply,
                    ThriftToPlaylistCommandReplyConverter),
    KORVO_REPLY_ROW("GetClipsCommandReply", true, GetClipsCommandReply,
                    ThriftToGetClipsCommandReplyConverter),
    KORVO_REPLY_ROW("GetTrainsCommandReply", false, GetTrainsCommandReply,
                    ThriftToGetTrainsCommandReplyConverter),
    KORVO_REPLY_ROW("GetPlaylistsCommandReply", false, GetPlaylistsCommandReply,
                    ThriftToGetPlaylistsCommandReplyConverter),
    KORVO_REPLY_ROW("GetServersCommandReply", false, GetServersCommandReply,
                    ThriftToGetServersCommandReplyConverter),
    KORVO_REPLY_ROW("GetAnglesGroupsCommandReply", true, GetAnglesGroupsCommandReply,
                    ThriftToGetAnglesGroupsCommandReplyConverter),
    KORVO_REPLY_ROW("AnglesGroupCommandReply", true, AnglesGroupCommandReply,
                    ThriftToAnglesGroupCommandReplyConverter),
};

#undef KORVO_REPLY_ROW

}  // namespace

std::unique_ptr<Domain::CommandReply> ChannelCommandReplyBuilder::BuildCommandReply(
    const std::string& replyType, const Common::Serialization::Buffer& buffer) {
    return Tables::BuildReply(kChannelReplies,
                              "Korvo/Plexis/Tessel/Client/ChannelCommandReplyBuilder", replyType,
                              buffer);
}

std::unique_ptr<Domain::CommandReply> DataCommandReplyBuilder::BuildCommandReply(
    const std::string& replyType, const Common::Serialization::Buffer& buffer) {
    return Tables::BuildReply(kDataReplies, "Korvo/Plexis/Tessel/Client/DataCommandReplyBuilder",
                              replyType, buffer);
}

}  // namespace Korvo::Plexis::Tessel::Client

#include <Korvo/Plexis/Tessel/Client/ChannelCommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandReplyBuilder.h>

#include "client/BuilderTables.h"

namespace Korvo::Plexis::Tessel::Client {
namespace {

namespace Domain = HighLevelOperations::Commands;

// In the order of the reply table: the replies any command may receive, then the family's own.
// "UnknownCommand" announces the UnknownCommandReply record; only the rows that accept it may
// come behind the "[part]" prefix.
constexpr auto kChannelReplies = Tables::ReplyRows<CommandFamily::Channel>();
constexpr auto kDataReplies = Tables::ReplyRows<CommandFamily::Data>();

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

#include "connection/JoinedBuilders.h"

#include <iterator>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include <Korvo/Plexis/Tessel/Client/ChannelCommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/Client/ChannelsCommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/CommandTypes.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandReplyBuilder.h>

namespace Korvo::Plexis::Tessel::Client::Detail {
namespace {

namespace Commands = HighLevelOperations::Commands;

const std::unordered_map<std::string_view, CommandFamily>& FamilyByCommand() {
    static const auto table = [] {
        std::unordered_map<std::string_view, CommandFamily> families;
        ForEachCommand([&](auto* params) {
            using Traits = CommandTraits<std::remove_pointer_t<decltype(params)>>;
            families.emplace(Traits::kName, Traits::kFamily);
        });
        return families;
    }();
    return table;
}

const std::unordered_set<std::string_view>& DataOnlyReplies() {
    static const auto table = [] {
        std::unordered_set<std::string_view> names;
        ForEachReply([&](auto* reply) {
            using Traits = ReplyTraits<std::remove_pointer_t<decltype(reply)>>;
            if (Traits::kFamilies == ReplyFamilies::Data) {
                names.insert(Traits::kName);
            }
        });
        return names;
    }();
    return table;
}

template <class List>
void Append(List& into, List&& part) {
    into.insert(into.end(), std::make_move_iterator(part.begin()),
                std::make_move_iterator(part.end()));
}

// Appends when both are of class `R`; whether they were.
template <class R, class Lists>
bool JoinAs(Commands::CommandReply& into, Commands::CommandReply& part, Lists lists) {
    auto* whole = dynamic_cast<R*>(&into);
    auto* piece = dynamic_cast<R*>(&part);
    if (whole == nullptr || piece == nullptr) {
        return false;
    }
    lists(*whole, *piece);
    return true;
}

}  // namespace

std::unique_ptr<Common::Serialization::Buffer> JoinedPayloadBuilder::BuildPayload(
    const std::string& commandName, const Commands::CommandParams& params) {
    const auto found = FamilyByCommand().find(commandName);
    if (found == FamilyByCommand().end()) {
        throw std::invalid_argument("Unknown command type.");
    }
    static ChannelsCommandParamsPayloadBuilder channel;
    static DataCommandParamsPayloadBuilder data;
    return found->second == CommandFamily::Channel ? channel.BuildPayload(commandName, params)
                                                   : data.BuildPayload(commandName, params);
}

std::unique_ptr<Commands::CommandReply> JoinedReplyBuilder::BuildCommandReply(
    const std::string& replyType, const Common::Serialization::Buffer& buffer) {
    static const std::string_view kPart = "[part]";
    std::string_view name = replyType;
    if (name.substr(0, kPart.size()) == kPart) {
        name.remove_prefix(kPart.size());
    }
    static ChannelCommandReplyBuilder channel;
    static DataCommandReplyBuilder data;
    return DataOnlyReplies().count(name) != 0 ? data.BuildCommandReply(replyType, buffer)
                                              : channel.BuildCommandReply(replyType, buffer);
}

void JoinReplies(Commands::CommandReply& into, Commands::CommandReply&& part) {
    const bool joined =
        JoinAs<Commands::ChannelCommandReply>(into, part,
                                              [](auto& whole, auto& piece) {
                                                  for (const auto& result : piece) {
                                                      whole.Add(result);
                                                  }
                                              }) ||
        JoinAs<Commands::ClipCommandReply>(
            into, part, [](auto& whole, auto& piece) { Append(whole.results, std::move(piece.results)); }) ||
        JoinAs<Commands::PlaylistCommandReply>(
            into, part, [](auto& whole, auto& piece) { Append(whole.results, std::move(piece.results)); }) ||
        JoinAs<Commands::GetClipsCommandReply>(
            into, part, [](auto& whole, auto& piece) { Append(whole.clips, std::move(piece.clips)); }) ||
        JoinAs<Commands::GetAnglesGroupsCommandReply>(into, part,
                                                      [](auto& whole, auto& piece) {
                                                          Append(whole.anglesGroups,
                                                                 std::move(piece.anglesGroups));
                                                      }) ||
        JoinAs<Commands::AnglesGroupCommandReply>(into, part, [](auto& whole, auto& piece) {
            Append(whole.clipCommandReply.results, std::move(piece.clipCommandReply.results));
        });
    if (!joined) {
        throw std::invalid_argument("the parts of the reply are of different classes");
    }
}

}  // namespace Korvo::Plexis::Tessel::Client::Detail

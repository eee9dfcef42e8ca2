#include <Korvo/Plexis/Tessel/Client/PendingCommandReply.h>

#include <stdexcept>

namespace Korvo::Plexis::Tessel::Client {
namespace {

PendingCommandReply::ItemKind KindOfEnding(ReplyQueue::Ending ending) {
    using Kind = PendingCommandReply::ItemKind;
    switch (ending) {
        case ReplyQueue::Ending::NotSent:
            return Kind::NotSent;
        case ReplyQueue::Ending::LinkLost:
            return Kind::LinkLost;
        case ReplyQueue::Ending::Overflowed:
            return Kind::Overflowed;
        default:
            return Kind::Cancelled;
    }
}

}  // namespace

PendingCommandReply::PendingCommandReply(std::shared_ptr<CommandReplyBuilder> replyBuilder,
                                         std::shared_ptr<RequestMap> requestMap, int requestId,
                                         std::shared_ptr<ReplyQueue> replies)
    : replyBuilder(std::move(replyBuilder)),
      requestMap(std::move(requestMap)),
      requestId(requestId),
      replies(std::move(replies)) {}

PendingCommandReply::~PendingCommandReply() {
    if (pending && requestMap) {
        requestMap->Forget(requestId, replies);
    }
}

void PendingCommandReply::EnsurePending() const {
    if (!pending) {
        throw std::logic_error(
            "PendingCommandReply: the request is complete; no further reply will arrive.");
    }
}

PendingCommandReply::Item PendingCommandReply::Classify(std::unique_ptr<BaseMessage> message) {
    if (!message) {
        pending = false;
        return {KindOfEnding(replies->GetEnding()), nullptr};
    }
    replies->waitingBytes.fetch_sub(ReplyQueue::Charge(*message));
    if (IsPartialReplyHeader(message->GetHeader())) {
        return {ItemKind::Partial, std::move(message)};
    }
    pending = false;
    return {ItemKind::Final, std::move(message)};
}

PendingCommandReply::Item PendingCommandReply::Next() {
    EnsurePending();
    return Classify(replies->Pop());
}

PendingCommandReply::Item PendingCommandReply::Next(std::chrono::milliseconds timeout) {
    EnsurePending();
    auto item = replies->Pop(timeout);
    if (!item) {
        return {ItemKind::TimedOut, nullptr};
    }
    return Classify(std::move(*item));
}

std::unique_ptr<HighLevelOperations::Commands::CommandReply> PendingCommandReply::BuildReply(
    const Item& item) const {
    if (!item.message) {
        throw std::invalid_argument(
            "PendingCommandReply: only a partial or final reply can be built into a reply.");
    }
    auto reply =
        replyBuilder->BuildCommandReply(item.message->GetHeader(), item.message->GetPayload());
    // The reception thread has checked the identifier already; this also catches a reply that
    // names the command twice, differently.
    const std::string& carried = reply ? reply->commandGuid.GetValue() : std::string();
    if (!carried.empty() && carried != replies->CommandGuid()) {
        throw std::invalid_argument(
            "PendingCommandReply: the reply names another command than this request's.");
    }
    return reply;
}

}  // namespace Korvo::Plexis::Tessel::Client

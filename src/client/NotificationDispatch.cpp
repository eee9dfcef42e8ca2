#include "client/NotificationDispatch.h"

#include <Korvo/Common/Serialization/Deserializer.h>
#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Common/Serialization/PointerBuffer.h>

namespace Korvo::Plexis::Tessel::Client::Detail {
namespace {

using namespace Notification;
using Common::Messaging::Message;
namespace Wire = Serialization::Thrift::Notifier::Generated;

// Decodes one notification of record `W` into a fresh `Args`, then calls the type's own
// callbacks and the family's, in list order. Whatever is thrown (undecodable bytes, a failed
// conversion, a callback's exception) leaves for the caller.
template <class W, class Args, class Type, class FamilyHandlers>
void Process(Type type, const Message& message,
             const NotificationHandlers::Handlers<Args>& specific, const FamilyHandlers& generic) {
    using namespace Common::Serialization;
    const PointerBuffer bytes(const_cast<unsigned char*>(message.Data()), message.DataSize());
    Args args;
    Deserializer<DeserializerImpl<W>, Args, Serialization::Thrift::FromThriftConverter<W, Args>>()
        .Deserialize(bytes, args);
    for (const auto& handler : specific) {
        handler(args);
    }
    for (const auto& handler : generic) {
        handler(type, args);
    }
}

void DispatchClipCommand(const NotificationHandlers& handlers, ClipCommandEvent::Type type,
                         const Message& message) {
    switch (type) {
        case ClipCommandEvent::ClipCreationStarted:
            return Process<Wire::ClipCreationStartedEventArgs>(
                type, message, handlers.clipCreationStartedHandlers, handlers.clipCommandHandlers);
        case ClipCommandEvent::ClipCreationFinished:
            return Process<Wire::ClipCreationFinishedEventArgs>(
                type, message, handlers.clipCreationFinishedHandlers, handlers.clipCommandHandlers);
        case ClipCommandEvent::ClipUpdateFinished:
            return Process<Wire::ClipUpdateFinishedEventArgs>(
                type, message, handlers.clipUpdateFinishedHandlers, handlers.clipCommandHandlers);
        case ClipCommandEvent::ClipDeletionFinished:
            return Process<Wire::ClipDeletionFinishedEventArgs>(
                type, message, handlers.clipDeletionFinishedHandlers, handlers.clipCommandHandlers);
        case ClipCommandEvent::ClipMoveStarted:
            return Process<Wire::ClipMoveStartedEventArgs>(
                type, message, handlers.clipMoveStartedHandlers, handlers.clipCommandHandlers);
        case ClipCommandEvent::ClipMoveFinished:
            return Process<Wire::ClipMoveFinishedEventArgs>(
                type, message, handlers.clipMoveFinishedHandlers, handlers.clipCommandHandlers);
        case ClipCommandEvent::MassClipUpdateFinished:
            return Process<Wire::MassClipUpdateFinishedEventArgs>(
                type, message, handlers.massClipUpdateFinishedHandlers,
                handlers.clipCommandHandlers);
        case ClipCommandEvent::MassClipDeletionFinished:
            return Process<Wire::MassClipDeletionFinishedEventArgs>(
                type, message, handlers.massClipDeletionFinishedHandlers,
                handlers.clipCommandHandlers);
        case ClipCommandEvent::AnglesGroupCreationFinished:
            return Process<Wire::AnglesGroupCreationFinishedEventArgs>(
                type, message, handlers.anglesGroupCreationFinishedHandlers,
                handlers.clipCommandHandlers);
        case ClipCommandEvent::AnglesGroupDeletionFinished:
            return Process<Wire::AnglesGroupDeletionFinishedEventArgs>(
                type, message, handlers.anglesGroupDeletionFinishedHandlers,
                handlers.clipCommandHandlers);
        case ClipCommandEvent::AnglesGroupUpdateFinished:
            return Process<Wire::AnglesGroupUpdateFinishedEventArgs>(
                type, message, handlers.anglesGroupUpdateFinishedHandlers,
                handlers.clipCommandHandlers);
        default:
            return;  // a value this client never receives
    }
}

void DispatchClipStatus(const NotificationHandlers& handlers, ClipStatusEvent::Type type,
                        const Message& message) {
    switch (type) {
        case ClipStatusEvent::RecordingRangesChanged:
            return Process<Wire::RecordingRangesChangedEventArgs>(
                type, message, handlers.recordingRangesChangedHandlers,
                handlers.clipStatusHandlers);
        default:
            return;  // a value this client never receives
    }
}

void DispatchChannelStatus(const NotificationHandlers& handlers, ChannelStatusEvent::Type type,
                           const Message& message) {
    switch (type) {
        case ChannelStatusEvent::RecorderStateChanged:
            return Process<Wire::RecorderStateChangedEventArgs>(
                type, message, handlers.recorderStateChangedHandlers,
                handlers.channelStatusHandlers);
        case ChannelStatusEvent::PlayerStateChanged:
            return Process<Wire::PlayerStateChangedEventArgs>(
                type, message, handlers.playerStateChangedHandlers, handlers.channelStatusHandlers);
        default:
            return;  // a value this client never receives
    }
}

void DispatchServerStatus(const NotificationHandlers& handlers, ServerStatusEvent::Type type,
                          const Message& message) {
    switch (type) {
        case ServerStatusEvent::ServerAdded:
            return Process<Wire::ServerAddedEventArgs>(type, message, handlers.serverAddedHandlers,
                                                       handlers.serverStatusHandlers);
        case ServerStatusEvent::ServerRemoved:
            return Process<Wire::ServerRemovedEventArgs>(
                type, message, handlers.serverRemovedHandlers, handlers.serverStatusHandlers);
        case ServerStatusEvent::DisconnectedFromNetwork:
            return Process<Wire::DisconnectedFromNetworkEventArgs>(
                type, message, handlers.disconnectedFromNetworkHandlers,
                handlers.serverStatusHandlers);
        default:
            return;  // a value this client never receives
    }
}

}  // namespace

NotificationDispatch::NotificationDispatch()
    : clipCommandMessageTypes{
        {"ClipCreationStarted", ClipCommandEvent::ClipCreationStarted},
        {"ClipCreationFinished", ClipCommandEvent::ClipCreationFinished},
        {"ClipUpdateFinished", ClipCommandEvent::ClipUpdateFinished},
        {"ClipDeletionFinished", ClipCommandEvent::ClipDeletionFinished},
        {"ClipMoveStarted", ClipCommandEvent::ClipMoveStarted},
        {"ClipMoveFinished", ClipCommandEvent::ClipMoveFinished},
        {"MassClipUpdateFinished", ClipCommandEvent::MassClipUpdateFinished},
        {"MassClipDeletionFinished", ClipCommandEvent::MassClipDeletionFinished},
        {"AnglesGroupCreationFinished", ClipCommandEvent::AnglesGroupCreationFinished},
        {"AnglesGroupDeletionFinished", ClipCommandEvent::AnglesGroupDeletionFinished},
        {"AnglesGroupUpdateFinished", ClipCommandEvent::AnglesGroupUpdateFinished},
      },
      clipStatusMessageTypes{
        {"RecordingRangesChanged", ClipStatusEvent::RecordingRangesChanged},
      },
      channelStatusMessageTypes{
        {"RecorderStateChanged", ChannelStatusEvent::RecorderStateChanged},
        {"PlayerStateChanged", ChannelStatusEvent::PlayerStateChanged},
      },
      serverStatusMessageTypes{
        {"ServerAdded", ServerStatusEvent::ServerAdded},
        {"ServerRemoved", ServerStatusEvent::ServerRemoved},
        {"DisconnectedFromNetwork", ServerStatusEvent::DisconnectedFromNetwork},
      } {}

bool NotificationDispatch::operator()(const NotificationHandlers& handlers,
                                      const Message& message) const {
    const std::string& header = message.GetHeader();
    if (auto found = clipCommandMessageTypes.find(header); found != clipCommandMessageTypes.end()) {
        DispatchClipCommand(handlers, found->second, message);
    } else if (auto found = clipStatusMessageTypes.find(header);
               found != clipStatusMessageTypes.end()) {
        DispatchClipStatus(handlers, found->second, message);
    } else if (auto found = channelStatusMessageTypes.find(header);
               found != channelStatusMessageTypes.end()) {
        DispatchChannelStatus(handlers, found->second, message);
    } else if (auto found = serverStatusMessageTypes.find(header);
               found != serverStatusMessageTypes.end()) {
        DispatchServerStatus(handlers, found->second, message);
    } else {
        return false;
    }
    return true;
}

}  // namespace Korvo::Plexis::Tessel::Client::Detail

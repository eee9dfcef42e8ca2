#include "client/NotificationDispatch.h"

#include <Korvo/Common/Serialization/Deserializer.h>
#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Common/Serialization/PointerBuffer.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

namespace Korvo::Plexis::Tessel::Client::Detail {
namespace {

using namespace Notification;
using Common::Messaging::Message;
namespace Wire = Serialization::Thrift::Notifier::Generated;

// Decodes one notification of record `W` into a fresh `Args`, then calls the type's own
// callbacks and the family's, in list order. Whatever is thrown (undecodable bytes, a failed
// conversion, a callback's exception) leaves for the caller. Once `stop` is set (a callback
// destroyed the lists' owner) it returns without touching the lists again.
template <class W, class Args, class Type, class FamilyHandlers>
void Process(const std::atomic<bool>* stop, Type type, const Message& message,
             const NotificationHandlers::Handlers<Args>& specific, const FamilyHandlers& generic) {
    using namespace Common::Serialization;
    const PointerBuffer bytes(const_cast<unsigned char*>(message.Data()), message.DataSize());
    Args args;
    Deserializer<DeserializerImpl<W>, Args, Serialization::Thrift::FromThriftConverter<W, Args>>()
        .Deserialize(bytes, args);
    const auto stopped = [stop] { return stop != nullptr && stop->load(); };
    for (const auto& handler : specific) {
        handler(args);
        if (stopped()) {
            return;
        }
    }
    for (const auto& handler : generic) {
        handler(type, args);
        if (stopped()) {
            return;
        }
    }
}

void DispatchClipCommand(const std::atomic<bool>* stop, const NotificationHandlers& handlers, ClipCommandEvent::Type type,
                         const Message& message) {
    switch (type) {
        case ClipCommandEvent::ClipCreationStarted:
            return Process<Wire::ClipCreationStartedEventArgs>(
                stop, type, message, handlers.clipCreationStartedHandlers, handlers.clipCommandHandlers);
        case ClipCommandEvent::ClipCreationFinished:
            return Process<Wire::ClipCreationFinishedEventArgs>(
                stop, type, message, handlers.clipCreationFinishedHandlers, handlers.clipCommandHandlers);
        case ClipCommandEvent::ClipUpdateFinished:
            return Process<Wire::ClipUpdateFinishedEventArgs>(
                stop, type, message, handlers.clipUpdateFinishedHandlers, handlers.clipCommandHandlers);
        case ClipCommandEvent::ClipDeletionFinished:
            return Process<Wire::ClipDeletionFinishedEventArgs>(
                stop, type, message, handlers.clipDeletionFinishedHandlers, handlers.clipCommandHandlers);
        case ClipCommandEvent::ClipMoveStarted:
            return Process<Wire::ClipMoveStartedEventArgs>(
                stop, type, message, handlers.clipMoveStartedHandlers, handlers.clipCommandHandlers);
        case ClipCommandEvent::ClipMoveFinished:
            return Process<Wire::ClipMoveFinishedEventArgs>(
                stop, type, message, handlers.clipMoveFinishedHandlers, handlers.clipCommandHandlers);
        case ClipCommandEvent::MassClipUpdateFinished:
            return Process<Wire::MassClipUpdateFinishedEventArgs>(
                stop, type, message, handlers.massClipUpdateFinishedHandlers,
                handlers.clipCommandHandlers);
        case ClipCommandEvent::MassClipDeletionFinished:
            return Process<Wire::MassClipDeletionFinishedEventArgs>(
                stop, type, message, handlers.massClipDeletionFinishedHandlers,
                handlers.clipCommandHandlers);
        case ClipCommandEvent::AnglesGroupCreationFinished:
            return Process<Wire::AnglesGroupCreationFinishedEventArgs>(
                stop, type, message, handlers.anglesGroupCreationFinishedHandlers,
                handlers.clipCommandHandlers);
        case ClipCommandEvent::AnglesGroupDeletionFinished:
            return Process<Wire::AnglesGroupDeletionFinishedEventArgs>(
                stop, type, message, handlers.anglesGroupDeletionFinishedHandlers,
                handlers.clipCommandHandlers);
        case ClipCommandEvent::AnglesGroupUpdateFinished:
            return Process<Wire::AnglesGroupUpdateFinishedEventArgs>(
                stop, type, message, handlers.anglesGroupUpdateFinishedHandlers,
                handlers.clipCommandHandlers);
        default:
            return;  // a value this client never receives
    }
}

void DispatchClipStatus(const std::atomic<bool>* stop, const NotificationHandlers& handlers, ClipStatusEvent::Type type,
                        const Message& message) {
    switch (type) {
        case ClipStatusEvent::RecordingRangesChanged:
            return Process<Wire::RecordingRangesChangedEventArgs>(
                stop, type, message, handlers.recordingRangesChangedHandlers,
                handlers.clipStatusHandlers);
        default:
            return;  // a value this client never receives
    }
}

void DispatchChannelStatus(const std::atomic<bool>* stop, const NotificationHandlers& handlers, ChannelStatusEvent::Type type,
                           const Message& message) {
    switch (type) {
        case ChannelStatusEvent::RecorderStateChanged:
            return Process<Wire::RecorderStateChangedEventArgs>(
                stop, type, message, handlers.recorderStateChangedHandlers,
                handlers.channelStatusHandlers);
        case ChannelStatusEvent::PlayerStateChanged:
            return Process<Wire::PlayerStateChangedEventArgs>(
                stop, type, message, handlers.playerStateChangedHandlers, handlers.channelStatusHandlers);
        default:
            return;  // a value this client never receives
    }
}

void DispatchServerStatus(const std::atomic<bool>* stop, const NotificationHandlers& handlers, ServerStatusEvent::Type type,
                          const Message& message) {
    switch (type) {
        case ServerStatusEvent::ServerAdded:
            return Process<Wire::ServerAddedEventArgs>(stop, type, message, handlers.serverAddedHandlers,
                                                       handlers.serverStatusHandlers);
        case ServerStatusEvent::ServerRemoved:
            return Process<Wire::ServerRemovedEventArgs>(
                stop, type, message, handlers.serverRemovedHandlers, handlers.serverStatusHandlers);
        case ServerStatusEvent::DisconnectedFromNetwork:
            return Process<Wire::DisconnectedFromNetworkEventArgs>(
                stop, type, message, handlers.disconnectedFromNetworkHandlers,
                handlers.serverStatusHandlers);
        default:
            return;  // a value this client never receives
    }
}

}  // namespace

NotificationDispatch::NotificationDispatch(const std::atomic<bool>* stop)
    : stop(stop),
      clipCommandMessageTypes{
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
        DispatchClipCommand(stop, handlers, found->second, message);
    } else if (auto found = clipStatusMessageTypes.find(header);
               found != clipStatusMessageTypes.end()) {
        DispatchClipStatus(stop, handlers, found->second, message);
    } else if (auto found = channelStatusMessageTypes.find(header);
               found != channelStatusMessageTypes.end()) {
        DispatchChannelStatus(stop, handlers, found->second, message);
    } else if (auto found = serverStatusMessageTypes.find(header);
               found != serverStatusMessageTypes.end()) {
        DispatchServerStatus(stop, handlers, found->second, message);
    } else {
        return false;
    }
    return true;
}

}  // namespace Korvo::Plexis::Tessel::Client::Detail

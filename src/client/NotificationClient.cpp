#include <Korvo/Plexis/Tessel/Client/NotificationClient.h>

#include <unordered_map>

#include <Korvo/Common/Messaging/ObjectShutDownException.h>
#include <Korvo/Common/Serialization/Deserializer.h>
#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Common/Serialization/PointerBuffer.h>
#include <Korvo/Plexis/Tessel/Logging/Loggers.h>

#include "logging/LogSupport.h"

namespace Korvo::Plexis::Tessel::Client {
namespace {

using namespace Notification;
using Common::Messaging::Message;
using Logging::ILogger;
namespace Wire = Serialization::Thrift::Notifier::Generated;

constexpr const char* kSource = "Korvo/Plexis/Tessel/Client/NotificationClient";

// Decodes one notification of record `W` into a fresh `Args`, then calls the type's own
// callbacks and the family's, in list order. Whatever is thrown (undecodable bytes, a failed
// conversion, a callback's exception) leaves for the loop to log.
template <class W, class Args, class Type, class FamilyHandlers>
void Process(Type type, const Message& message, const NotificationClient::Handlers<Args>& specific,
             const FamilyHandlers& generic) {
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

}  // namespace

NotificationClient::NotificationClient(const std::vector<Common::Messaging::EndPoint>& endPoints,
                                       const std::vector<std::string>& topics,
                                       const Common::Messaging::TransportOptions& options)
    : subscription(
          std::make_unique<Common::Messaging::Client::Subscription>(endPoints, topics, options)),
      logger(Logging::Loggers::GetInstance().GetLogger("NotificationClient")) {
    worker = std::async(std::launch::async, &NotificationClient::Run, this);
}

NotificationClient::~NotificationClient() {
    subscription->ShutDown();
    if (worker.valid()) {
        worker.wait();
    }
}

void NotificationClient::Run() {
    // The four families' type names, looked up in this order; no name stands in two tables.
    const std::unordered_map<std::string, ClipCommandEvent::Type> clipCommandMessageTypes{
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
    };
    const std::unordered_map<std::string, ClipStatusEvent::Type> clipStatusMessageTypes{
        {"RecordingRangesChanged", ClipStatusEvent::RecordingRangesChanged},
    };
    const std::unordered_map<std::string, ChannelStatusEvent::Type> channelStatusMessageTypes{
        {"RecorderStateChanged", ChannelStatusEvent::RecorderStateChanged},
        {"PlayerStateChanged", ChannelStatusEvent::PlayerStateChanged},
    };
    const std::unordered_map<std::string, ServerStatusEvent::Type> serverStatusMessageTypes{
        {"ServerAdded", ServerStatusEvent::ServerAdded},
        {"ServerRemoved", ServerStatusEvent::ServerRemoved},
        {"DisconnectedFromNetwork", ServerStatusEvent::DisconnectedFromNetwork},
    };

    while (!subscription->IsShutDown()) {
        try {
            const auto event = subscription->Receive();
            const Message& message = event.Payload();
            const std::string& header = message.GetHeader();
            std::lock_guard<std::mutex> lock(handlersMutex);
            if (auto found = clipCommandMessageTypes.find(header);
                found != clipCommandMessageTypes.end()) {
                DispatchClipCommand(found->second, message);
            } else if (auto found = clipStatusMessageTypes.find(header);
                       found != clipStatusMessageTypes.end()) {
                DispatchClipStatus(found->second, message);
            } else if (auto found = channelStatusMessageTypes.find(header);
                       found != channelStatusMessageTypes.end()) {
                DispatchChannelStatus(found->second, message);
            } else if (auto found = serverStatusMessageTypes.find(header);
                       found != serverStatusMessageTypes.end()) {
                DispatchServerStatus(found->second, message);
            } else {
                // The text names the last table searched, whatever the unknown type.
                Logging::Log(logger, ILogger::Error, "Run: serverStatusMessageTypes unknown.",
                             kSource, 154);
            }
        } catch (const Common::Messaging::ObjectShutDownException& error) {
            Logging::LogComposed(
                logger, ILogger::Trace,
                [&] {
                    return std::string("Run: Object shutDown exception (") + error.what() + ").";
                },
                kSource, 158);
            return;
        } catch (const std::exception& error) {
            Logging::LogComposed(
                logger, ILogger::Error,
                [&] { return std::string("Run: Exception (") + error.what() + ")."; }, kSource,
                162);
        } catch (...) {
            Logging::Log(logger, ILogger::Error, "Run: Exception unknown.", kSource, 165);
        }
    }
}

void NotificationClient::DispatchClipCommand(ClipCommandEvent::Type type, const Message& message) {
    switch (type) {
        case ClipCommandEvent::ClipCreationStarted:
            return Process<Wire::ClipCreationStartedEventArgs>(
                type, message, clipCreationStartedHandlers, clipCommandHandlers);
        case ClipCommandEvent::ClipCreationFinished:
            return Process<Wire::ClipCreationFinishedEventArgs>(
                type, message, clipCreationFinishedHandlers, clipCommandHandlers);
        case ClipCommandEvent::ClipUpdateFinished:
            return Process<Wire::ClipUpdateFinishedEventArgs>(
                type, message, clipUpdateFinishedHandlers, clipCommandHandlers);
        case ClipCommandEvent::ClipDeletionFinished:
            return Process<Wire::ClipDeletionFinishedEventArgs>(
                type, message, clipDeletionFinishedHandlers, clipCommandHandlers);
        case ClipCommandEvent::ClipMoveStarted:
            return Process<Wire::ClipMoveStartedEventArgs>(type, message, clipMoveStartedHandlers,
                                                           clipCommandHandlers);
        case ClipCommandEvent::ClipMoveFinished:
            return Process<Wire::ClipMoveFinishedEventArgs>(type, message, clipMoveFinishedHandlers,
                                                            clipCommandHandlers);
        case ClipCommandEvent::MassClipUpdateFinished:
            return Process<Wire::MassClipUpdateFinishedEventArgs>(
                type, message, massClipUpdateFinishedHandlers, clipCommandHandlers);
        case ClipCommandEvent::MassClipDeletionFinished:
            return Process<Wire::MassClipDeletionFinishedEventArgs>(
                type, message, massClipDeletionFinishedHandlers, clipCommandHandlers);
        case ClipCommandEvent::AnglesGroupCreationFinished:
            return Process<Wire::AnglesGroupCreationFinishedEventArgs>(
                type, message, anglesGroupCreationFinishedHandlers, clipCommandHandlers);
        case ClipCommandEvent::AnglesGroupDeletionFinished:
            return Process<Wire::AnglesGroupDeletionFinishedEventArgs>(
                type, message, anglesGroupDeletionFinishedHandlers, clipCommandHandlers);
        case ClipCommandEvent::AnglesGroupUpdateFinished:
            return Process<Wire::AnglesGroupUpdateFinishedEventArgs>(
                type, message, anglesGroupUpdateFinishedHandlers, clipCommandHandlers);
        default:
            return;  // a value this client never receives
    }
}

void NotificationClient::DispatchClipStatus(ClipStatusEvent::Type type, const Message& message) {
    switch (type) {
        case ClipStatusEvent::RecordingRangesChanged:
            return Process<Wire::RecordingRangesChangedEventArgs>(
                type, message, recordingRangesChangedHandlers, clipStatusHandlers);
        default:
            return;  // a value this client never receives
    }
}

void NotificationClient::DispatchChannelStatus(ChannelStatusEvent::Type type,
                                               const Message& message) {
    switch (type) {
        case ChannelStatusEvent::RecorderStateChanged:
            return Process<Wire::RecorderStateChangedEventArgs>(
                type, message, recorderStateChangedHandlers, channelStatusHandlers);
        case ChannelStatusEvent::PlayerStateChanged:
            return Process<Wire::PlayerStateChangedEventArgs>(
                type, message, playerStateChangedHandlers, channelStatusHandlers);
        default:
            return;  // a value this client never receives
    }
}

void NotificationClient::DispatchServerStatus(ServerStatusEvent::Type type,
                                              const Message& message) {
    switch (type) {
        case ServerStatusEvent::ServerAdded:
            return Process<Wire::ServerAddedEventArgs>(type, message, serverAddedHandlers,
                                                       serverStatusHandlers);
        case ServerStatusEvent::ServerRemoved:
            return Process<Wire::ServerRemovedEventArgs>(type, message, serverRemovedHandlers,
                                                         serverStatusHandlers);
        case ServerStatusEvent::DisconnectedFromNetwork:
            return Process<Wire::DisconnectedFromNetworkEventArgs>(
                type, message, disconnectedFromNetworkHandlers, serverStatusHandlers);
        default:
            return;  // a value this client never receives
    }
}

}  // namespace Korvo::Plexis::Tessel::Client

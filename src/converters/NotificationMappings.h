#pragma once

// The tables of the 17 notification records. The common part of the clip and angles-group events
// travels as one nested record and lives in the argument classes' common base; the player and
// recorder events carry the channel as a server and a channel number, which the argument classes
// hold as one channel identifier (ChannelEventLeaf below).

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

#include "converters/DataMappings.h"
#include "converters/FieldMapping.h"
#include "converters/Leaves.h"

namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping {

namespace Events = ::Korvo::Plexis::Notification;
namespace WireEvents = ::Korvo::Plexis::Tessel::Serialization::Thrift::Notifier::Generated;

// clang-format off

KORVO_MAPPING(Events::CommandEventArgs, WireEvents::ClipCommandEventArgs)
    KORVO_PRESENT(timestamp), KORVO_PRESENT(userName), KORVO_PRESENT(serverId),
    KORVO_PRESENT(channelNumber), KORVO_PRESENT(commandGuid), KORVO_PRESENT(result)
KORVO_END_MAPPING;

#define KORVO_CLIP_CREATION_ROWS                                                              \
    KORVO_BASE_PRESENT(Events::CommandEventArgs, command), KORVO_PRESENT(clip),               \
    KORVO_PRESENT(sourceClip), KORVO_PRESENT(inTimecode), KORVO_PRESENT(outTimecode),         \
    KORVO_PRESENT(revision)
KORVO_MAPPING(Events::ClipCreationEventArgs, WireEvents::ClipCreationStartedEventArgs)
    KORVO_CLIP_CREATION_ROWS
KORVO_END_MAPPING;
KORVO_MAPPING(Events::ClipCreationFinishedEventArgs, WireEvents::ClipCreationFinishedEventArgs)
    KORVO_CLIP_CREATION_ROWS
KORVO_END_MAPPING;

KORVO_MAPPING(Events::ClipUpdateFinishedEventArgs, WireEvents::ClipUpdateFinishedEventArgs)
    KORVO_BASE_PRESENT(Events::CommandEventArgs, command), KORVO_PRESENT(oldClip),
    KORVO_PRESENT(newClip), KORVO_PRESENT(succeeded), KORVO_PRESENT(revision)
KORVO_END_MAPPING;

KORVO_MAPPING(Events::ClipDeletionFinishedEventArgs, WireEvents::ClipDeletionFinishedEventArgs)
    KORVO_BASE_PRESENT(Events::CommandEventArgs, command), KORVO_PRESENT(clip),
    KORVO_PRESENT(revision)
KORVO_END_MAPPING;

#define KORVO_CLIP_MOVE_ROWS                                                                  \
    KORVO_BASE_PRESENT(Events::CommandEventArgs, command), KORVO_PRESENT(oldClip),            \
    KORVO_PRESENT(newClip), KORVO_PRESENT(revision)
KORVO_MAPPING(Events::ClipMoveEventArgs, WireEvents::ClipMoveStartedEventArgs)
    KORVO_CLIP_MOVE_ROWS
KORVO_END_MAPPING;
KORVO_MAPPING(Events::ClipMoveFinishedEventArgs, WireEvents::ClipMoveFinishedEventArgs)
    KORVO_CLIP_MOVE_ROWS
KORVO_END_MAPPING;

#define KORVO_MASS_CLIP_ROWS                                                                  \
    KORVO_BASE_PRESENT(Events::CommandEventArgs, command), KORVO_PRESENT(clipCount),          \
    KORVO_PRESENT(revision)
KORVO_MAPPING(Events::MassClipUpdateEventArgs, WireEvents::MassClipUpdateFinishedEventArgs)
    KORVO_MASS_CLIP_ROWS
KORVO_END_MAPPING;
KORVO_MAPPING(Events::MassClipDeletionEventArgs, WireEvents::MassClipDeletionFinishedEventArgs)
    KORVO_MASS_CLIP_ROWS
KORVO_END_MAPPING;

KORVO_MAPPING(Events::AnglesGroupCreationEventArgs, WireEvents::AnglesGroupCreationEventArgs)
    KORVO_BASE_REQUIRED(Events::CommandEventArgs, command), KORVO_ALWAYS(anglesGroup),
    KORVO_ALWAYS(revision)
KORVO_END_MAPPING;
KORVO_MAPPING(Events::AnglesGroupUpdateEventArgs, WireEvents::AnglesGroupUpdateEventArgs)
    KORVO_BASE_REQUIRED(Events::CommandEventArgs, command), KORVO_ALWAYS(anglesGroup),
    KORVO_ALWAYS(revision)
KORVO_END_MAPPING;
KORVO_MAPPING(Events::AnglesGroupDeletionEventArgs, WireEvents::AnglesGroupDeletionEventArgs)
    KORVO_BASE_REQUIRED(Events::CommandEventArgs, command), KORVO_ALWAYS(groupGuid),
    KORVO_ALWAYS(revision)
KORVO_END_MAPPING;
KORVO_MAPPING(Events::AnglesGroupCreationFinishedEventArgs,
              WireEvents::AnglesGroupCreationFinishedEventArgs)
    KORVO_BASE_REQUIRED(Events::AnglesGroupCreationEventArgs, creation)
KORVO_END_MAPPING;
KORVO_MAPPING(Events::AnglesGroupUpdateFinishedEventArgs,
              WireEvents::AnglesGroupUpdateFinishedEventArgs)
    KORVO_BASE_REQUIRED(Events::AnglesGroupUpdateEventArgs, update)
KORVO_END_MAPPING;
KORVO_MAPPING(Events::AnglesGroupDeletionFinishedEventArgs,
              WireEvents::AnglesGroupDeletionFinishedEventArgs)
    KORVO_BASE_REQUIRED(Events::AnglesGroupDeletionEventArgs, deletion)
KORVO_END_MAPPING;

KORVO_MAPPING(Events::RecordingRangesChangedEventArgs, WireEvents::RecordingRangesChangedEventArgs)
    KORVO_PRESENT(channelGuid), KORVO_PRESENT(ranges), KORVO_PRESENT(isRecording),
    KORVO_PRESENT(isLoopRecording)
KORVO_END_MAPPING;

KORVO_MAPPING(Events::ServerAddedEventArgs, WireEvents::ServerAddedEventArgs)
    KORVO_PRESENT(serverId), KORVO_PRESENT(server)
KORVO_END_MAPPING;
KORVO_MAPPING(Events::ServerRemovedEventArgs, WireEvents::ServerRemovedEventArgs)
    KORVO_PRESENT(serverId)
KORVO_END_MAPPING;
KORVO_MAPPING(Events::DisconnectedFromNetworkEventArgs, WireEvents::DisconnectedFromNetworkEventArgs)
    KORVO_PRESENT(serverId)
KORVO_END_MAPPING;

// clang-format on

/// A player or recorder event: the wire's server and channel number become the argument's channel
/// identifier of kind `Kind`, and back.
template <class Args, class Wire, DomainData::Channels::Guid::Type Kind>
struct ChannelEventLeaf {
    static ConversionResult ToWire(const Args& source, Wire& target) {
        target = Wire();
        target.__set_serverId(source.serverId);
        target.__set_timestamp(source.timestamp);
        if (!source.channelGuid.IsUndefined()) {
            if (source.channelGuid.GetType() != Kind) {
                return LeafFailure("channelGuid '" + source.channelGuid.ToString() +
                                   "' is not a channel of the kind this event reports");
            }
            target.__set_channelNumber(static_cast<std::int32_t>(source.channelGuid.GetChannel()));
        }
        target.__isset.state = true;
        return Prefixed("state", Mapping::ToWire(source.state, target.state));
    }
    static ConversionResult FromWire(const Wire& source, Args& target) {
        if (source.__isset.serverId) {
            target.serverId = source.serverId;
        }
        if (source.__isset.timestamp) {
            target.timestamp = source.timestamp;
        }
        if (source.__isset.channelNumber) {
            if (source.channelNumber < 0) {
                return LeafFailure("channelNumber " + std::to_string(source.channelNumber) +
                                   " is negative");
            }
            target.channelGuid = DomainData::Channels::Guid(
                Kind, target.serverId, static_cast<unsigned int>(source.channelNumber));
        }
        if (!source.__isset.state) {
            return {};
        }
        return Prefixed("state", Mapping::FromWire(source.state, target.state));
    }
};

template <>
struct Leaf<Events::RecorderStateChangedEventArgs, WireEvents::RecorderStateChangedEventArgs>
    : ChannelEventLeaf<Events::RecorderStateChangedEventArgs,
                       WireEvents::RecorderStateChangedEventArgs,
                       DomainData::Channels::Guid::Recorder> {};

template <>
struct Leaf<Events::PlayerStateChangedEventArgs, WireEvents::PlayerStateChangedEventArgs>
    : ChannelEventLeaf<Events::PlayerStateChangedEventArgs,
                       WireEvents::PlayerStateChangedEventArgs, DomainData::Channels::Guid::Player> {
};

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift::Mapping

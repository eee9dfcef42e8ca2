#pragma once

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/OperationStatus.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The outcome of a channel command on one channel.
struct ChannelResult {
    Data::Channels::Guid channelGuid;  ///< the player or recorder concerned
    Data::OperationStatus status;      ///< outcome on that channel

    KORVO_FIELDS(ChannelResult, channelGuid, status)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

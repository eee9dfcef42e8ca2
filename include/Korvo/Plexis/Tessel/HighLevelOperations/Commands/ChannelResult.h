#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/Channels/Guid.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/OperationStatus.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The outcome of a channel command on one channel.
struct ChannelResult {
    Data::Channels::Guid channelGuid;  ///< the player or recorder concerned
    Data::OperationStatus status;      ///< outcome on that channel

    auto Fields() const { return std::tie(channelGuid, status); }
    KORVO_COMPARED_BY_FIELDS(ChannelResult)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

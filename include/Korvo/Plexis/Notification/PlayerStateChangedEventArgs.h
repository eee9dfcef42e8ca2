#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/Channels/PlayerState.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/ChannelStatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A player's state changed ("PlayerStateChanged").
class PlayerStateChangedEventArgs : public ChannelStatusEventArgs {
public:
    Data::Channels::PlayerState state;  ///< the new state

    auto Fields() const {
        return std::tuple_cat(ChannelStatusEventArgs::Fields(), std::tie(state));
    }
    KORVO_COMPARED_BY_FIELDS(PlayerStateChangedEventArgs)
};

}  // namespace Korvo::Plexis::Notification

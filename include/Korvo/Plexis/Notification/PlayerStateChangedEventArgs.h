#pragma once

#include <Korvo/Plexis/Data/Channels/PlayerState.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ChannelStatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A player's state changed ("PlayerStateChanged").
class PlayerStateChangedEventArgs : public ChannelStatusEventArgs {
public:
    Data::Channels::PlayerState state;  ///< the new state

    KORVO_FIELDS(PlayerStateChangedEventArgs, KORVO_BASE_FIELDS(ChannelStatusEventArgs), state)
};

}  // namespace Korvo::Plexis::Notification

#pragma once

#include <Korvo/Plexis/Data/Channels/RecorderState.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Notification/ChannelStatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A recorder's state changed ("RecorderStateChanged").
class RecorderStateChangedEventArgs : public ChannelStatusEventArgs {
public:
    Data::Channels::RecorderState state;  ///< the new state

    KORVO_FIELDS(RecorderStateChangedEventArgs, KORVO_BASE_FIELDS(ChannelStatusEventArgs), state)
};

}  // namespace Korvo::Plexis::Notification

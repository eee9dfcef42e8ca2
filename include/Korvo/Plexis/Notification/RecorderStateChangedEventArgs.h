#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/Channels/RecorderState.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Notification/ChannelStatusEventArgs.h>

namespace Korvo::Plexis::Notification {

/// A recorder's state changed ("RecorderStateChanged").
class RecorderStateChangedEventArgs : public ChannelStatusEventArgs {
public:
    Data::Channels::RecorderState state;  ///< the new state

    auto Fields() const {
        return std::tuple_cat(ChannelStatusEventArgs::Fields(), std::tie(state));
    }
    KORVO_COMPARED_BY_FIELDS(RecorderStateChangedEventArgs)
};

}  // namespace Korvo::Plexis::Notification

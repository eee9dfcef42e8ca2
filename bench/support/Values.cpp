#include "support/Values.h"

#include "support/Samples.h"

namespace Korvo::Bench {

Plexis::Notification::PlayerStateChangedEventArgs PlayerStateChangedSample() {
    Plexis::Notification::PlayerStateChangedEventArgs args;
    args.channelGuid = Plexis::Data::Channels::Guid(Plexis::Data::Channels::Guid::Player, 3, 2);
    args.serverId = 3;
    args.timestamp = 1'700'000'000'000;
    args.state = Testing::Samples::PlayerState(5);
    return args;
}

}  // namespace Korvo::Bench

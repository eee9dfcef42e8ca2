#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

#include "converters/RecordConverterImpl.h"

namespace Korvo::Plexis::Tessel::Serialization::Thrift {

#define KORVO_NOTIFICATION_PAIR(Name, Family, Args, ...)              \
    KORVO_INSTANTIATE_CONVERTERS(::Korvo::Plexis::Notification::Args, \
                                 Notifier::Generated::Name##EventArgs, #Args)
KORVO_TESSEL_NOTIFICATIONS(KORVO_NOTIFICATION_PAIR)

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift

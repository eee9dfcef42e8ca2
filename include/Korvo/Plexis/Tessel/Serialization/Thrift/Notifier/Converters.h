#pragma once

// The converters of the 17 notifications, in both directions: the client decodes them, a server
// (such as the simulator) encodes them.

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Notifications_types.h>
#include <Korvo/Plexis/Tessel/MessageTables.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/RecordConverters.h>

namespace Korvo::Plexis::Tessel::Serialization::Thrift::Notifier {

/// The wire record of a notification's argument class, and its converters.
template <class Args>
struct WireOf;

// ThriftTo<Name>EventArgsConverter decodes a notification; <Name>EventArgsToThriftConverter
// encodes one.
#define KORVO_TESSEL_NOTIFICATION_CONVERTERS(Name, Family, Args, ...)         \
    using ThriftTo##Name##EventArgsConverter =                                \
        FromThriftConverter<Generated::Name##EventArgs, Notification::Args>;  \
    using Name##EventArgsToThriftConverter =                                  \
        ToThriftConverter<Notification::Args, Generated::Name##EventArgs>;    \
    template <>                                                               \
    struct WireOf<Notification::Args> {                                       \
        using Record = Generated::Name##EventArgs;                            \
        using ToThrift = Name##EventArgsToThriftConverter;                    \
        using FromThrift = ThriftTo##Name##EventArgsConverter;                \
    };
KORVO_TESSEL_NOTIFICATIONS(KORVO_TESSEL_NOTIFICATION_CONVERTERS)
#undef KORVO_TESSEL_NOTIFICATION_CONVERTERS

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift::Notifier

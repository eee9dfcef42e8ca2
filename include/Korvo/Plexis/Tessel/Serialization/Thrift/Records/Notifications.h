#pragma once

// The notification records, in
// Korvo::Plexis::Tessel::Serialization::Thrift::Notifier::Generated.
//
// Generated at build time from idl/Notifications.thrift; reading and writing are templates over the
// Thrift protocol (SerializerImpl and DeserializerImpl instantiate them with the compact
// protocol). Field ids, types and presence are the wire contract; the .thrift file has a line on
// each field.

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Notifications_types.h>

#pragma once

// The channel records, in Korvo::Plexis::Tessel::Serialization::Thrift::Data::Channels::
// Generated: the load-boundary family, PlayerState, RecorderState and their parts.
//
// Generated at build time from idl/Channels.thrift; reading and writing are templates over the
// Thrift protocol (SerializerImpl and DeserializerImpl instantiate them with the compact
// protocol). Field ids, types and presence are the wire contract; the .thrift file has a line on
// each field.

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Channels_types.h>

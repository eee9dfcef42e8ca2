#pragma once

// The reply records of channel and data commands, in
// Korvo::Plexis::Tessel::Serialization::Thrift::Commands::Generated.
//
// Generated at build time from idl/Replies.thrift; reading and writing are templates over the
// Thrift protocol (SerializerImpl and DeserializerImpl instantiate them with the compact
// protocol). Field ids, types and presence are the wire contract; the .thrift file has a line on
// each field.

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Replies_types.h>

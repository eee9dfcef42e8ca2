#pragma once

// The server record, ServerInfo, in
// Korvo::Plexis::Tessel::Serialization::Thrift::Data::Servers::Generated.
//
// Generated at build time from idl/Servers.thrift; reading and writing are templates over the
// Thrift protocol (SerializerImpl and DeserializerImpl instantiate them with the compact
// protocol). Field ids, types and presence are the wire contract; the .thrift file has a line on
// each field.

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Servers_types.h>

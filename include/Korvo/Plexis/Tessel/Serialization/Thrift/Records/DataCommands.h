#pragma once

// The parameters of the data commands, in
// Korvo::Plexis::Tessel::Serialization::Thrift::Commands::Generated.
//
// Generated at build time from idl/DataCommands.thrift; reading and writing are templates over the
// Thrift protocol (SerializerImpl and DeserializerImpl instantiate them with the compact
// protocol). Field ids, types and presence are the wire contract; the .thrift file has a line on
// each field.

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/DataCommands_types.h>

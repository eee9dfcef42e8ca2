#pragma once

// The sequence and playlist records, in
// Korvo::Plexis::Tessel::Serialization::Thrift::Data::Sequences::Generated.
//
// Generated at build time from idl/Sequences.thrift; reading and writing are templates over the
// Thrift protocol (SerializerImpl and DeserializerImpl instantiate them with the compact
// protocol). Field ids, types and presence are the wire contract; the .thrift file has a line on
// each field.

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Sequences_types.h>

#pragma once

// Records shared by every message family, in Korvo::Plexis::Data::Generated: Guid
// (ordered by its value text), PlayerDataOverrides and OperationStatus.
//
// Generated at build time from idl/Common.thrift; reading and writing are templates over the
// Thrift protocol (SerializerImpl and DeserializerImpl instantiate them with the compact
// protocol). Field ids, types and presence are the wire contract; the .thrift file has a line on
// each field.

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Common_types.h>

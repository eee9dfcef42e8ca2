#pragma once

// The angles-group records, AnglesGroup and AnglesGroupItem, in
// Korvo::Plexis::Data::Clips::Groups::Generated.
//
// Generated at build time from idl/AnglesGroups.thrift; reading and writing are templates over the
// Thrift protocol (SerializerImpl and DeserializerImpl instantiate them with the compact
// protocol). Field ids, types and presence are the wire contract; the .thrift file has a line on
// each field.

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/AnglesGroups_types.h>

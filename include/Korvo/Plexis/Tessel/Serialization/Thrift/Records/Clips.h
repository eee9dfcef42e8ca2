#pragma once

// The clip records, in Korvo::Plexis::Tessel::Serialization::Thrift::Data::Clips::Generated:
// AsciiOrUtf16String, Essence, Clip, RecordingRange and Train.
//
// Generated at build time from idl/Clips.thrift; reading and writing are templates over the
// Thrift protocol (SerializerImpl and DeserializerImpl instantiate them with the compact
// protocol). Field ids, types and presence are the wire contract; the .thrift file has a line on
// each field.

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Clips_types.h>

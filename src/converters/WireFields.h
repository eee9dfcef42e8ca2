#pragma once

// The field lists of every wire record, generated from idl/ beside the records themselves.

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/AnglesGroups_fields.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Channels_fields.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Clips_fields.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Commands_fields.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Common_fields.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/DataCommands_fields.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Notifications_fields.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Replies_fields.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Sequences_fields.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Servers_fields.h>

#include "converters/Conversion.h"

#pragma once

// The converters of the 30 commands and of the replies, in both directions: the client encodes
// commands and decodes replies; a server (such as the simulator) does the reverse.

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Commands_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/DataCommands_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Replies_types.h>
#include <Korvo/Plexis/Tessel/MessageTables.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/RecordConverters.h>

namespace Korvo::Plexis::Tessel::Serialization::Thrift::Commands {

/// The wire record of a command's parameters class or of a reply class, and its converters.
template <class Domain>
struct WireOf;

// <Wire>ToThriftConverter encodes a command; ThriftTo<Wire>Converter decodes one.
#define KORVO_TESSEL_COMMAND_CONVERTERS(Domain, Wire, ...)                         \
    using Wire##ToThriftConverter =                                                \
        ToThriftConverter<HighLevelOperations::Commands::Domain, Generated::Wire>; \
    using ThriftTo##Wire##Converter =                                              \
        FromThriftConverter<Generated::Wire, HighLevelOperations::Commands::Domain>; \
    template <>                                                                    \
    struct WireOf<HighLevelOperations::Commands::Domain> {                         \
        using Record = Generated::Wire;                                            \
        using ToThrift = Wire##ToThriftConverter;                                  \
        using FromThrift = ThriftTo##Wire##Converter;                              \
    };
KORVO_TESSEL_COMMANDS(KORVO_TESSEL_COMMAND_CONVERTERS)
#undef KORVO_TESSEL_COMMAND_CONVERTERS

// ThriftTo<Reply>Converter decodes a reply; <Reply>ToThriftConverter encodes one.
#define KORVO_TESSEL_REPLY_CONVERTERS(Reply, ...)                                     \
    using ThriftTo##Reply##Converter =                                                \
        FromThriftConverter<Generated::Reply, HighLevelOperations::Commands::Reply>;  \
    using Reply##ToThriftConverter =                                                  \
        ToThriftConverter<HighLevelOperations::Commands::Reply, Generated::Reply>;    \
    template <>                                                                       \
    struct WireOf<HighLevelOperations::Commands::Reply> {                             \
        using Record = Generated::Reply;                                              \
        using ToThrift = Reply##ToThriftConverter;                                    \
        using FromThrift = ThriftTo##Reply##Converter;                                \
    };
KORVO_TESSEL_REPLIES(KORVO_TESSEL_REPLY_CONVERTERS)
#undef KORVO_TESSEL_REPLY_CONVERTERS

/// The get-channels reply decoder keeps the name it has always had.
using GetChannelsCommandReplyFromThriftConverter = ThriftToGetChannelsCommandReplyConverter;

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift::Commands

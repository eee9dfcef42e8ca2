#pragma once

// The whole public API of the Tessel client library.

#include <Korvo/Common/Messaging/ConnectionState.h>
#include <Korvo/Common/Messaging/Exception.h>
#include <Korvo/Common/Messaging/ObjectShutDownException.h>
#include <Korvo/Common/Messaging/Origin.h>
#include <Korvo/Common/Messaging/TransportException.h>
#include <Korvo/Common/Serialization/Buffer.h>
#include <Korvo/Common/Serialization/ConversionResult.h>
#include <Korvo/Common/Serialization/Converter.h>
#include <Korvo/Common/Serialization/Deserializer.h>
#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Common/Serialization/Exception.h>
#include <Korvo/Common/Serialization/InvalidConversionException.h>
#include <Korvo/Common/Serialization/InvalidFormatException.h>
#include <Korvo/Common/Serialization/PointerBuffer.h>
#include <Korvo/Common/Serialization/Serializer.h>
#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Common/Serialization/Thrift/PermissiveMemoryBuffer.h>
#include <Korvo/Plexis/Tessel/Client/BaseClientMessenger.h>
#include <Korvo/Plexis/Tessel/Client/BaseMessage.h>
#include <Korvo/Plexis/Tessel/Client/CommandClient.h>
#include <Korvo/Plexis/Tessel/Client/CommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/CommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/Client/ConcurrentQueue.h>
#include <Korvo/Plexis/Tessel/Client/PendingCommandReply.h>
#include <Korvo/Plexis/Tessel/Client/RequestMap.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>
#include <Korvo/Plexis/Tessel/Logging/ILogger.h>
#include <Korvo/Plexis/Tessel/Logging/ILoggerFactory.h>
#include <Korvo/Plexis/Tessel/Logging/Loggers.h>
#include <Korvo/Plexis/Tessel/Logging/StandardErrorLoggerFactory.h>

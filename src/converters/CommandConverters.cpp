#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>

#include "converters/RecordConverterImpl.h"

namespace Korvo::Plexis::Tessel::Serialization::Thrift {

#define KORVO_COMMAND_PAIR(Domain, Wire, ...)                                                      \
    KORVO_INSTANTIATE_CONVERTERS(HighLevelOperations::Commands::Domain, Commands::Generated::Wire, \
                                 #Domain)
KORVO_TESSEL_COMMANDS(KORVO_COMMAND_PAIR)

}  // namespace Korvo::Plexis::Tessel::Serialization::Thrift

#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

// Out of line so that the classes' type information lives in one place.
CommandParams::~CommandParams() = default;
CommandReply::~CommandReply() = default;

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

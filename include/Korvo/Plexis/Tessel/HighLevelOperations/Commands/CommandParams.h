#pragma once

#include <Korvo/Plexis/Data/Guid.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Base of the parameters of every command ("PlayCommand" takes `PlayCommandParams`, ...). A
/// payload builder picks the concrete class from the command name.
class CommandParams {
public:
    virtual ~CommandParams();

    /// The command's own identifier, echoed by the server in its reply. A command without one
    /// cannot be converted for the wire.
    Data::Guid commandGuid;

protected:
    CommandParams() = default;
    CommandParams(const CommandParams&) = default;
    CommandParams& operator=(const CommandParams&) = default;
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Base of the parameters of every command ("PlayCommand" takes `PlayCommandParams`, ...). A
/// payload builder picks the concrete class from the command name.
class CommandParams {
public:
    virtual ~CommandParams();

protected:
    CommandParams() = default;
    CommandParams(const CommandParams&) = default;
    CommandParams& operator=(const CommandParams&) = default;
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Base of every reply to a command. `GetType()` tells the concrete class with a fixed code that
/// callers switch on (1 for `SuccessReply`, 6 for `ChannelCommandReply`, ...).
class CommandReply {
public:
    virtual ~CommandReply();

    /// The fixed code of the concrete reply class.
    virtual int GetType() const = 0;

protected:
    CommandReply() = default;
    CommandReply(const CommandReply&) = default;
    CommandReply& operator=(const CommandReply&) = default;
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

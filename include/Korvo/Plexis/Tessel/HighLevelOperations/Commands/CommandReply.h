#pragma once

#include <Korvo/Plexis/Data/Guid.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Base of every reply to a command. `GetType()` tells the concrete class with a fixed code that
/// callers switch on (`SuccessReply::kType` is 1, `ChannelCommandReply::kType` 6, ...).
class CommandReply {
public:
    virtual ~CommandReply();

    /// The fixed code of the concrete reply class.
    virtual int GetType() const = 0;

    /// The identifier of the command this reply answers; empty when the server did not say.
    Data::Guid commandGuid;

protected:
    explicit CommandReply(const Data::Guid& commandGuid) : commandGuid(commandGuid) {}
    CommandReply(const CommandReply&) = default;
    CommandReply& operator=(const CommandReply&) = default;
};

/// A reply class with the fixed code `Code`.
template <int Code>
class CommandReplyOfType : public CommandReply {
public:
    static constexpr int kType = Code;

    int GetType() const override { return Code; }

protected:
    explicit CommandReplyOfType(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReply(commandGuid) {}
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

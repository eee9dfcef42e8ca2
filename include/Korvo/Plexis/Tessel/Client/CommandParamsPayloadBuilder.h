#pragma once

#include <memory>
#include <string>

#include <Korvo/Common/Serialization/Buffer.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>

namespace Korvo::Plexis::Tessel::Client {

/// Turns a command name and its parameters into the payload bytes sent to the server.
/// Implementations are stateless and may be called from several threads at once.
class CommandParamsPayloadBuilder {
public:
    virtual ~CommandParamsPayloadBuilder() = default;

    /// The encoded payload, owned by the caller. Throws `std::invalid_argument` "Unknown command
    /// type." for a name it does not know, `std::invalid_argument` naming both classes when
    /// `params` is not of the class that the name implies ("PlayCommand takes PlayCommandParams,
    /// not StepCommandParams"), and `InvalidConversionException` when the parameters cannot be
    /// converted.
    virtual std::unique_ptr<Common::Serialization::Buffer> BuildPayload(
        const std::string& commandName,
        const HighLevelOperations::Commands::CommandParams& params) = 0;
};

}  // namespace Korvo::Plexis::Tessel::Client

#pragma once

#include <memory>
#include <string>

#include <Korvo/Plexis/Tessel/Client/CommandParamsPayloadBuilder.h>

namespace Korvo::Plexis::Tessel::Client {

/// Builds the payloads of the fifteen channel commands: "PlayCommand", "LiveCommand",
/// "ChainCommand", "DialCommand", "StepCommand", "SyncCommand", "LoadClipsCommand",
/// "LoadSequencesCommand", "SetLoadBoundariesCommand", "GoIdleCommand", "StartRecordingCommand"
/// (with `StartCommandParams`), "StopRecordingCommand" (with `StopCommandParams`),
/// "GetChannelsCommand", "GetMultiviewerDataCommand" and "SetMultiviewerDataCommand". Each name
/// takes the parameters class of the same name (`PlayCommandParams` for "PlayCommand"). Stateless;
/// may be called from several threads at once.
class ChannelsCommandParamsPayloadBuilder final : public CommandParamsPayloadBuilder {
public:
    /// The command's wire record, encoded; owned by the caller. `params` must be of the class the
    /// name implies (not checked). Throws `std::invalid_argument` "Unknown command type." for any
    /// other name (compared exactly) and `InvalidConversionException` when the parameters cannot
    /// be converted (for example an empty `commandGuid`).
    std::unique_ptr<Common::Serialization::Buffer> BuildPayload(
        const std::string& commandName,
        const HighLevelOperations::Commands::CommandParams& params) override;
};

}  // namespace Korvo::Plexis::Tessel::Client

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ChannelResult.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The outcome of a channel command (play, live, record, ...), one result per addressed channel.
/// Type code 6.
///
/// Holds at most `kCapacity` results inside the object, with no heap storage: a reply from the
/// server with more results cannot be represented and fails to convert. Unused entries keep the
/// undefined channel and the status (0, 11).
class ChannelCommandReply : public CommandReplyOfType<6> {
public:
    static constexpr std::size_t kCapacity = 12;

    explicit ChannelCommandReply(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReplyOfType(commandGuid) {}

    std::array<ChannelResult, kCapacity> results;
    std::int32_t count = 0;  ///< how many entries of `results` are used, from the first

    /// The used entries.
    const ChannelResult* begin() const { return results.data(); }
    const ChannelResult* end() const { return results.data() + count; }

    /// Appends a result; throws `std::length_error` when all `kCapacity` entries are used.
    void Add(const ChannelResult& result) {
        if (count >= static_cast<std::int32_t>(kCapacity)) {
            throw std::length_error("ChannelCommandReply holds at most 12 channel results.");
        }
        results[static_cast<std::size_t>(count++)] = result;
    }

    KORVO_FIELDS(ChannelCommandReply, commandGuid, results, count)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

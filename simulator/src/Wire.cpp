#include "Wire.h"

namespace Korvo::Plexis::Tessel::Simulator {

void Emitter::ChannelResults(const Data::Guid& commandGuid,
                             const std::vector<Commands::ChannelResult>& results) {
    constexpr std::size_t kPerMessage = Commands::ChannelCommandReply::kCapacity;
    const std::string name = ReplyHeader<Commands::ChannelCommandReply>();
    std::size_t start = 0;
    do {
        const std::size_t end = std::min(results.size(), start + kPerMessage);
        Commands::ChannelCommandReply reply(commandGuid);
        for (std::size_t i = start; i < end; ++i) {
            reply.Add(results[i]);
        }
        Add(end < results.size() ? "[part]" + name : name, reply);
        start = end;
    } while (start < results.size());
}

}  // namespace Korvo::Plexis::Tessel::Simulator

#pragma once

#include <cstdint>
#include <vector>

#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Clips; a long listing arrives in parts, each part one reply. Type code 14.
class GetClipsCommandReply : public CommandReplyOfType<14> {
public:
    explicit GetClipsCommandReply(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReplyOfType(commandGuid) {}

    std::int64_t marker = 0;  ///< a value the server attaches to the listing, passed on unchanged
    std::vector<Data::Clips::Clip> clips;  ///< in the server's order

    KORVO_FIELDS(GetClipsCommandReply, commandGuid, marker, clips)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <cstdint>
#include <vector>

#include <Korvo/Plexis/Data/Clips/Train.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The trains of the system. Type code 9.
class GetTrainsCommandReply : public CommandReplyOfType<9> {
public:
    explicit GetTrainsCommandReply(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReplyOfType(commandGuid) {}

    std::int64_t marker = 0;  ///< a value the server attaches to the listing, passed on unchanged
    std::vector<Data::Clips::Train> trains;

    KORVO_FIELDS(GetTrainsCommandReply, commandGuid, marker, trains)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

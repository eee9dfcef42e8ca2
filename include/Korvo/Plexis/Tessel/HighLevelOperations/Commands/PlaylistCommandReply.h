#pragma once

#include <vector>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PlaylistResult.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The outcome of a playlist command (create, update, delete), one result per playlist. Type
/// code 5.
class PlaylistCommandReply : public CommandReplyOfType<5> {
public:
    explicit PlaylistCommandReply(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReplyOfType(commandGuid) {}

    std::vector<PlaylistResult> results;  ///< one entry per playlist handled

    KORVO_FIELDS(PlaylistCommandReply, commandGuid, results)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#pragma once

#include <cstdint>
#include <vector>

#include <Korvo/Plexis/Data/Clips/Groups/AnglesGroup.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// Angles groups; a long listing arrives in parts, each part one reply. Type code 16.
class GetAnglesGroupsCommandReply : public CommandReplyOfType<16> {
public:
    explicit GetAnglesGroupsCommandReply(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReplyOfType(commandGuid) {}

    std::int64_t marker = 0;  ///< a value the server attaches to the listing, passed on unchanged
    std::vector<Data::Clips::Groups::AnglesGroup> anglesGroups;  ///< in the server's order

    KORVO_FIELDS(GetAnglesGroupsCommandReply, commandGuid, marker, anglesGroups)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

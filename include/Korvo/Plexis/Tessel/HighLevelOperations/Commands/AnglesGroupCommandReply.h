#pragma once

#include <Korvo/Plexis/Data/Clips/Groups/Guid.h>
#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Guid.h>
#include <Korvo/Plexis/Data/OperationStatus.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ClipCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The outcome of an angles-group command, with the results for the group's clips. Type code 4.
class AnglesGroupCommandReply : public CommandReplyOfType<4> {
public:
    explicit AnglesGroupCommandReply(const Data::Guid& commandGuid = Data::Guid::Empty())
        : CommandReplyOfType(commandGuid) {}

    Data::Clips::Groups::Guid groupGuid;  ///< the angles group concerned
    Data::OperationStatus status;         ///< outcome for the group
    ClipCommandReply clipCommandReply;    ///< clip results, as a whole clip command reply with its
                                          ///< own command identifier

    KORVO_FIELDS(AnglesGroupCommandReply, commandGuid, groupGuid, status, clipCommandReply)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#include <Korvo/Plexis/Tessel/Client/ChannelsCommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>

#include "client/BuilderTables.h"

namespace Korvo::Plexis::Tessel::Client {
namespace {

namespace Domain = HighLevelOperations::Commands;
namespace Wire = Serialization::Thrift::Commands::Generated;
namespace Converters = Serialization::Thrift::Commands;

#define KORVO_PAYLOAD_ROW(name, domain, wire) \
    { name, &Tables::Encode<Domain::domain, Wire::wire, Converters::wire##ToThriftConverter> }

// In the order in which the names are compared.
const Tables::PayloadRow kChannelCommands[] = {
    KORVO_PAYLOAD_ROW("PlayCommand", PlayCommandParams, PlayCommandParams),
    KORVO_PAYLOAD_ROW("LiveCommand", LiveCommandParams, LiveCommandParams),
    KORVO_PAYLOAD_ROW("ChainCommand", ChainCommandParams, ChainCommandParams),
    KORVO_PAYLOAD_ROW("DialCommand", DialCommandParams, DialCommandParams),
    KORVO_PAYLOAD_ROW("StepCommand", StepCommandParams, StepCommandParams),
    KORVO_PAYLOAD_ROW("SyncCommand", SyncCommandParams, SyncCommandParams),
    KORVO_PAYLOAD_ROW("LoadClipsCommand", LoadClipsCommandParams, LoadClipsCommandParams),
    KORVO_PAYLOAD_ROW("LoadSequencesCommand", LoadSequencesCommandParams,
                      LoadSequencesCommandParams),
    KORVO_PAYLOAD_ROW("SetLoadBoundariesCommand", SetLoadBoundariesCommandParams,
                      SetLoadBoundariesCommandParams),
    KORVO_PAYLOAD_ROW("GoIdleCommand", GoIdleCommandParams, GoIdleCommandParams),
    KORVO_PAYLOAD_ROW("StartRecordingCommand", StartCommandParams, StartRecordingCommandParams),
    KORVO_PAYLOAD_ROW("StopRecordingCommand", StopCommandParams, StopRecordingCommandParams),
    KORVO_PAYLOAD_ROW("GetChannelsCommand", GetChannelsCommandParams, GetChannelsCommandParams),
    KORVO_PAYLOAD_ROW("GetMultiviewerDataCommand", GetMultiviewerDataCommandParams,
                      GetMultiviewerDataCommandParams),
    KORVO_PAYLOAD_ROW("SetMultiviewerDataCommand", SetMultiviewerDataCommandParams,
                      SetMultiviewerDataCommandParams),
};

const Tables::PayloadRow kDataCommands[] = {
    KORVO_PAYLOAD_ROW("GetClipsCommand", GetClipsCommandParams, GetClipsCommandParams),
    KORVO_PAYLOAD_ROW("GetTrainsCommand", GetTrainsCommandParams, GetTrainsCommandParams),
    KORVO_PAYLOAD_ROW("GetServersCommand", GetServersCommandParams, GetServersCommandParams),
    KORVO_PAYLOAD_ROW("GetPlaylistsCommand", GetPlaylistsCommandParams, GetPlaylistsCommandParams),
    KORVO_PAYLOAD_ROW("DeleteClipsCommand", DeleteClipsCommandParams, DeleteClipsCommandParams),
    KORVO_PAYLOAD_ROW("CreateClipsCommand", CreateClipsCommandParams, CreateClipsCommandParams),
    KORVO_PAYLOAD_ROW("UpdateClipsCommand", UpdateClipsCommandParams, UpdateClipsCommandParams),
    KORVO_PAYLOAD_ROW("PingCommand", PingCommandParams, PingCommandParams),
    KORVO_PAYLOAD_ROW("GetAnglesGroupsCommand", GetAnglesGroupsCommandParams,
                      GetAnglesGroupsCommandParams),
    KORVO_PAYLOAD_ROW("DeleteAnglesGroupCommand", DeleteAnglesGroupCommandParams,
                      DeleteAnglesGroupCommandParams),
    KORVO_PAYLOAD_ROW("UpdateAnglesGroupCommand", UpdateAnglesGroupCommandParams,
                      UpdateAnglesGroupCommandParams),
    KORVO_PAYLOAD_ROW("CreateAnglesGroupCommand", CreateAnglesGroupCommandParams,
                      CreateAnglesGroupCommandParams),
    KORVO_PAYLOAD_ROW("CreatePlaylistsCommand", CreatePlaylistsCommandParams,
                      CreatePlaylistsCommandParams),
    KORVO_PAYLOAD_ROW("DeletePlaylistsCommand", DeletePlaylistsCommandParams,
                      DeletePlaylistsCommandParams),
    KORVO_PAYLOAD_ROW("UpdatePlaylistsCommand", UpdatePlaylistsCommandParams,
                      UpdatePlaylistsCommandParams),
};

#undef KORVO_PAYLOAD_ROW

}  // namespace

std::unique_ptr<Common::Serialization::Buffer> ChannelsCommandParamsPayloadBuilder::BuildPayload(
    const std::string& commandName, const Domain::CommandParams& params) {
    return Tables::BuildPayload(kChannelCommands, commandName, params);
}

std::unique_ptr<Common::Serialization::Buffer> DataCommandParamsPayloadBuilder::BuildPayload(
    const std::string& commandName, const Domain::CommandParams& params) {
    return Tables::BuildPayload(kDataCommands, commandName, params);
}

}  // namespace Korvo::Plexis::Tessel::Client

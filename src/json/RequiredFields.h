#pragma once

// The members a JSON object of command parameters must give: those a command cannot do without.
// Every other member may be left out and keeps the class's default (`commandGuid` is then
// generated).

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

#include "json/JsonCodec.h"

namespace Korvo::Plexis::Tessel::Json::Detail {

namespace Commands = HighLevelOperations::Commands;

KORVO_JSON_REQUIRED(Commands::PlayCommandParams, "players");
KORVO_JSON_REQUIRED(Commands::LiveCommandParams, "players");
KORVO_JSON_REQUIRED(Commands::ChainCommandParams, "players");
KORVO_JSON_REQUIRED(Commands::DialCommandParams, "players");
KORVO_JSON_REQUIRED(Commands::StepCommandParams, "players");
KORVO_JSON_REQUIRED(Commands::SyncCommandParams, "sourcePlayer", "players");
KORVO_JSON_REQUIRED(Commands::LoadClipCommandParam, "clip");
KORVO_JSON_REQUIRED(Commands::LoadClipsCommandParams, "playersParameters");
KORVO_JSON_REQUIRED(Commands::LoadSequenceCommandParam, "sequence");
KORVO_JSON_REQUIRED(Commands::LoadSequencesCommandParams, "playersParameters");
KORVO_JSON_REQUIRED(Commands::SetLoadBoundariesCommandParams, "playersParameters");
KORVO_JSON_REQUIRED(Commands::GoIdleCommandParams, "players");
KORVO_JSON_REQUIRED(Commands::StartCommandParams, "recorders");
KORVO_JSON_REQUIRED(Commands::StopCommandParams, "recorders");
KORVO_JSON_REQUIRED(Commands::SetMultiviewerDataCommandParams, "playersDataOverrides");
KORVO_JSON_REQUIRED(Commands::DeleteClipsCommandParams, "clips");
KORVO_JSON_REQUIRED(Commands::CreateClipParams, "sourceId", "clip");
KORVO_JSON_REQUIRED(Commands::CreateClipsCommandParams, "clips");
KORVO_JSON_REQUIRED(Commands::UpdateClipParams, "oldClip", "newClip");
KORVO_JSON_REQUIRED(Commands::UpdateClipsCommandParams, "clips");
KORVO_JSON_REQUIRED(Commands::DeleteAnglesGroupCommandParams, "groupGuid");
KORVO_JSON_REQUIRED(Commands::UpdateAnglesGroupCommandParams, "groupGuid");
KORVO_JSON_REQUIRED(Commands::CreateAnglesGroupCommandParams, "creationParams");
KORVO_JSON_REQUIRED(Commands::CreatePlaylistsCommandParams, "playlists");
KORVO_JSON_REQUIRED(Commands::DeletePlaylistsCommandParams, "playlists");
KORVO_JSON_REQUIRED(Commands::UpdatePlaylistParams, "oldPlaylist", "newPlaylist");
KORVO_JSON_REQUIRED(Commands::UpdatePlaylistsCommandParams, "params");

}  // namespace Korvo::Plexis::Tessel::Json::Detail

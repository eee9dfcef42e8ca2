// Parameters of the data commands (clips, trains, servers, playlists, angles groups, ping).
// Field 1 is the command's own identifier. Every field is written on every encoding except the
// three marked optional.

include "Common.thrift"
include "Clips.thrift"
include "Sequences.thrift"

namespace cpp Korvo.Plexis.Tessel.Serialization.Thrift.Commands.Generated

struct PingCommandParams {
  1: Common.Guid commandGuid,
}

struct GetClipsCommandParams {
  1: Common.Guid commandGuid,
}

struct GetTrainsCommandParams {
  1: Common.Guid commandGuid,
}

struct GetAnglesGroupsCommandParams {
  1: Common.Guid commandGuid,
}

struct GetServersCommandParams {
  1: Common.Guid commandGuid,
  2: i32 serverRange,  // which servers to list (value set of the server)
}

struct GetPlaylistsCommandParams {
  1: Common.Guid commandGuid,
  2: i32 elementMode,  // how much of each playlist to return (value set of the server)
  3: optional Common.Guid idFilter,  // only the playlist with this identifier
}

struct DeleteClipsCommandParams {
  1: Common.Guid commandGuid,
  2: list<Common.Guid> clips,
}

struct CreateClipParams {
  1: Common.Guid sourceId,  // the source the clip is created from
  2: Clips.Clip clip,
  3: bool setTimecodes,  // set the clip's time codes
}

struct CreateClipsCommandParams {
  1: Common.Guid commandGuid,
  2: list<CreateClipParams> clips,
}

// The clip as it was and as it is to become.
struct UpdateClipParams {
  1: Clips.Clip oldClip,
  2: Clips.Clip newClip,
}

struct UpdateClipsCommandParams {
  1: Common.Guid commandGuid,
  2: list<UpdateClipParams> clips,
}

// A group is created with its clips: field 3 is a whole clip-creation command, identifier and all.
struct CreateAnglesGroupCommandParams {
  1: Common.Guid commandGuid,
  2: i32 groupKivIndex,
  3: CreateClipsCommandParams creationParams,
}

struct UpdateAnglesGroupCommandParams {
  1: Common.Guid commandGuid,
  2: Common.Guid groupGuid,
  3: optional Common.Guid primaryAngle,
  4: optional Common.Guid secondaryAngle,
}

struct DeleteAnglesGroupCommandParams {
  1: Common.Guid commandGuid,
  2: Common.Guid groupGuid,
}

struct CreatePlaylistsCommandParams {
  1: Common.Guid commandGuid,
  2: list<Sequences.Playlist> playlists,
}

struct UpdatePlaylistParams {
  1: Sequences.Playlist oldPlaylist,
  2: Sequences.Playlist newPlaylist,
}

struct UpdatePlaylistsCommandParams {
  1: Common.Guid commandGuid,
  2: list<UpdatePlaylistParams> params,
}

struct DeletePlaylistsCommandParams {
  1: Common.Guid commandGuid,
  2: list<Common.Guid> playlists,
}

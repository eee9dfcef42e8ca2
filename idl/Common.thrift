// Small records shared by commands, replies and notifications: identifiers, per-player
// multiviewer overrides and the outcome of an operation.

namespace cpp Korvo.Plexis.Data.Generated

// An identifier. Sets and maps of identifiers are ordered by the value text.
struct Guid {
  1: string value,  // the identifier's text; empty for the empty identifier
}

// What a multiviewer shows for one player; each optional item overrides the player's own data.
struct PlayerDataOverrides {
  1: required Guid playerGuid,  // the player these overrides apply to
  2: optional i64 clipCreationIn,  // clip-creation in point
  3: optional i64 clipCreationOut,  // clip-creation out point
  4: optional bool isFirstControlledMediaOutput,  // first output the controller drives
  5: optional i32 controlMode,  // who controls the player (value set of the server)
  6: optional i32 programMode,  // program / preview mode (value set of the server)
  7: optional bool isPostRollEnabled,  // play on past the out point
  8: optional string message,  // text shown for the player
}

// The outcome of one operation: a pair of codes whose values the server defines.
struct OperationStatus {
  1: optional i32 code,  // the outcome itself (success or the kind of failure)
  2: optional i32 reason,  // the finer reason behind the outcome
}

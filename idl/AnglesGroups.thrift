// Angles groups: clips of one action seen by several cameras, kept together.

include "Common.thrift"

namespace cpp Korvo.Plexis.Data.Clips.Groups.Generated

// One angle of a group. Both fields are required: a group with an incomplete angle is rejected.
struct AnglesGroupItem {
  1: required Common.Guid clipGuid,  // the clip that shows this angle
  2: required i32 camera,  // the camera the angle was recorded from
}

struct AnglesGroup {
  1: required Common.Guid groupGuid,  // the group's identifier
  2: required map<i32, AnglesGroupItem> angles,  // the group's angles, keyed by their index
}

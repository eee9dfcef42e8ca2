#pragma once

// Domain values with every member set to something other than its default, for round-trip tests:
// a field that a conversion forgets or swaps shows up as a difference.

#include <Korvo/Plexis/Data/Channels/LoadBoundary.h>
#include <Korvo/Plexis/Data/Channels/PlayerState.h>
#include <Korvo/Plexis/Data/Channels/RecorderState.h>
#include <Korvo/Plexis/Data/Clips/Clip.h>
#include <Korvo/Plexis/Data/Clips/Groups/AnglesGroup.h>
#include <Korvo/Plexis/Data/Clips/Train.h>
#include <Korvo/Plexis/Data/OperationStatus.h>
#include <Korvo/Plexis/Data/Sequences/Playlist.h>
#include <Korvo/Plexis/Data/Servers/ServerInfo.h>
#include <Korvo/Plexis/Multiviewer/PlayerDataOverrides.h>

namespace Korvo::Testing::Samples {

namespace Data = Plexis::Data;

/// Values derived from `seed`, so that two samples with different seeds differ in every member.
Data::Clips::Clip Clip(int seed = 1);
Data::Sequences::Playlist Playlist(int seed = 1);
Data::Channels::PlayerState PlayerState(int seed = 1);
Data::Channels::RecorderState RecorderState(int seed = 1);
Data::Servers::ServerInfo Server(int seed = 1);
Data::Clips::Train Train(int seed = 1);
Data::Clips::Groups::AnglesGroup AnglesGroup(int seed = 1);
Plexis::Multiviewer::PlayerDataOverrides Overrides(const Data::Channels::Guid& player,
                                                   int seed = 1);
Data::Channels::LoadBoundary Boundary(int seed = 1);
Data::OperationStatus Status(int seed = 1);

}  // namespace Korvo::Testing::Samples

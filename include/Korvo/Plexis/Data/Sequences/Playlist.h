#pragma once

#include <string>

#include <Korvo/Plexis/Data/FieldList.h>
#include <Korvo/Plexis/Data/Sequences/AudioVideoTrack.h>
#include <Korvo/Plexis/Data/Sequences/Sequence.h>

namespace Korvo::Plexis::Data::Sequences {

/// A playlist: a sequence and its audio-video track, with the clip of its auxiliary track.
struct Playlist {
    AudioVideoTrack audioVideoTrack;
    std::string auxTrackClipUmId;
    Sequence sequence;

    KORVO_FIELDS(Playlist, audioVideoTrack, auxTrackClipUmId, sequence)
};

}  // namespace Korvo::Plexis::Data::Sequences

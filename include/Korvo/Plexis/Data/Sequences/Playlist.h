#pragma once

#include <string>
#include <tuple>

#include <Korvo/Plexis/Data/ComparedByFields.h>
#include <Korvo/Plexis/Data/Sequences/AudioVideoTrack.h>
#include <Korvo/Plexis/Data/Sequences/Sequence.h>

namespace Korvo::Plexis::Data::Sequences {

/// A playlist: a sequence and its audio-video track, with the clip of its auxiliary track.
struct Playlist {
    AudioVideoTrack audioVideoTrack;
    std::string auxTrackClipUmId;
    Sequence sequence;

    auto Fields() const { return std::tie(audioVideoTrack, auxTrackClipUmId, sequence); }
    KORVO_COMPARED_BY_FIELDS(Playlist)
};

}  // namespace Korvo::Plexis::Data::Sequences

#pragma once

#include <cstdint>
#include <string>

#include <Korvo/Plexis/Data/Channels/LoadBoundary.h>
#include <Korvo/Plexis/Data/Channels/PlayerClipOnAir.h>
#include <Korvo/Plexis/Data/Channels/PlayerInfoOnAir.h>
#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Data::Channels {

/// The state of a player channel. Value sets are the server's.
struct PlayerState {
    std::int64_t timestamp = 0;           ///< server clock when the state was taken
    std::int32_t channelNumber = 0;       ///< the channel's number on its server
    std::string channelName;              ///< the channel's name
    std::int32_t serverId = 0;            ///< the server that hosts the channel
    std::int32_t playMode = 0;            ///< idle, cued, playing, live, ...
    PlayerInfoOnAir infoOnAir;            ///< on-air information
    PlayerClipOnAir currentClip;          ///< the clip on air
    PlayerClipOnAir nextClip;             ///< the clip loaded to follow it
    std::int64_t cueTimepoint = 0;        ///< time point the player was cued to
    std::int64_t currentTimepoint = 0;    ///< time point on air
    std::int64_t liveTimepoint = 0;       ///< record time point followed when the player is live
    std::int64_t chainTimepoint = 0;      ///< time point where chained material starts
    std::string loadedClipUmId;           ///< material identifier of the loaded clip
    std::string loadedSequenceUmId;       ///< material identifier of the loaded sequence
    std::string liveRecorderName;         ///< recorder followed when the player is live
    std::string currentTimecode;          ///< time code on air, as displayed
    std::string inTimecode;               ///< time code of the in point, as displayed
    std::string outTimecode;              ///< time code of the out point, as displayed
    std::string remainingTimecode;        ///< time left before the out point, as displayed
    std::string durationTimecode;         ///< length of the loaded material, as displayed
    std::int32_t loadedMaterialType = 0;  ///< nothing, clip, sequence or live
    LoadBoundary inBoundary;              ///< first load boundary
    LoadBoundary outBoundary;             ///< second load boundary

    KORVO_FIELDS(PlayerState, timestamp, channelNumber, channelName, serverId, playMode, infoOnAir,
                 currentClip, nextClip, cueTimepoint, currentTimepoint, liveTimepoint,
                 chainTimepoint, loadedClipUmId, loadedSequenceUmId, liveRecorderName,
                 currentTimecode, inTimecode, outTimecode, remainingTimecode, durationTimecode,
                 loadedMaterialType, inBoundary, outBoundary)
};

}  // namespace Korvo::Plexis::Data::Channels

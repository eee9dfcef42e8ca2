#pragma once

#include <tuple>

#include <Korvo/Plexis/Data/Channels/LoadBoundary.h>
#include <Korvo/Plexis/Data/ComparedByFields.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The new boundaries of one player's loaded material.
struct SetLoadBoundariesCommandParam {
    Data::Channels::LoadBoundary inBoundary;
    Data::Channels::LoadBoundary outBoundary;

    auto Fields() const { return std::tie(inBoundary, outBoundary); }
    KORVO_COMPARED_BY_FIELDS(SetLoadBoundariesCommandParam)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

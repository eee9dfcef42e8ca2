#pragma once

#include <Korvo/Plexis/Data/Channels/LoadBoundary.h>
#include <Korvo/Plexis/Data/FieldList.h>

namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands {

/// The new boundaries of one player's loaded material.
struct SetLoadBoundariesCommandParam {
    Data::Channels::LoadBoundary inBoundary;
    Data::Channels::LoadBoundary outBoundary;

    KORVO_FIELDS(SetLoadBoundariesCommandParam, inBoundary, outBoundary)
};

}  // namespace Korvo::Plexis::Tessel::HighLevelOperations::Commands

#include <Korvo/Plexis/Data/Clips/Clip.h>

namespace Korvo::Plexis::Data::Clips {

const TimePoints::TimeCode& Clip::DefaultTimecode() {
    return TimePoints::TimeCode::DefaultForClip();
}

}  // namespace Korvo::Plexis::Data::Clips

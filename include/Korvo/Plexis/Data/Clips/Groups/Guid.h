#pragma once

#include <Korvo/Plexis/Data/Guid.h>

namespace Korvo::Plexis::Data::Clips::Groups {

/// The identifier of an angles group: a `Data::Guid` of its own type, so that a group identifier
/// is not passed where a clip's is expected.
class Guid : public Data::Guid {
public:
    using Data::Guid::Guid;
    Guid() = default;
    explicit Guid(const Data::Guid& other) : Data::Guid(other) {}
};

}  // namespace Korvo::Plexis::Data::Clips::Groups

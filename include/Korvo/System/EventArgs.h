#pragma once

#include <tuple>

namespace Korvo::System {

/// The root of the status notifications' argument classes.
class EventArgs {
public:
    virtual ~EventArgs() = default;

    /// No members of its own; derived classes add theirs to this.
    std::tuple<> Fields() const { return {}; }
};

}  // namespace Korvo::System

#pragma once

#include <string>
#include <utility>

namespace Korvo::Plexis::Data {

/// The identifier of a command, clip, playlist, angles group or any other object of the server:
/// an opaque text. The empty text is the empty identifier. Ordered by the text.
class Guid {
public:
    /// The empty identifier.
    Guid() = default;

    explicit Guid(std::string value) : value(std::move(value)) {}

    /// The shared empty identifier.
    static const Guid& Empty();

    const std::string& GetValue() const noexcept { return value; }
    bool IsEmpty() const noexcept { return value.empty(); }

    friend bool operator==(const Guid& left, const Guid& right) {
        return left.value == right.value;
    }
    friend bool operator!=(const Guid& left, const Guid& right) { return !(left == right); }
    friend bool operator<(const Guid& left, const Guid& right) { return left.value < right.value; }

private:
    std::string value;
};

}  // namespace Korvo::Plexis::Data

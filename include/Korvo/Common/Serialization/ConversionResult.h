#pragma once

#include <string>
#include <utility>

namespace Korvo::Common::Serialization {

/// What a conversion between a domain object and a wire record returns.
struct ConversionResult {
    bool success = true;  ///< true when the target was filled completely
    std::string message;  ///< why the conversion failed; empty on success

    static ConversionResult Success() { return {}; }
    static ConversionResult Failure(std::string why) { return {false, std::move(why)}; }
};

}  // namespace Korvo::Common::Serialization

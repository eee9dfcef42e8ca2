#pragma once

#include <exception>
#include <string>

namespace Korvo::Common::Serialization {

/// Base of the serialization layer's exceptions; `what()` returns the message given.
class Exception : public std::exception {
public:
    explicit Exception(const char* message) : message(message ? message : "") {}
    explicit Exception(const std::string& message) : message(message) {}

    const char* what() const noexcept override { return message.c_str(); }

private:
    std::string message;
};

}  // namespace Korvo::Common::Serialization

#pragma once

#include <exception>
#include <string>
#include <utility>

namespace Korvo::Common::Messaging {

/// Base of the messaging layer's exceptions; `what()` returns the message given.
class Exception : public std::exception {
public:
    explicit Exception(std::string message) : message(std::move(message)) {}
    ~Exception() override;

    const char* what() const noexcept override { return message.c_str(); }

private:
    std::string message;
};

}  // namespace Korvo::Common::Messaging

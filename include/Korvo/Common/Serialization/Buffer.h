#pragma once

namespace Korvo::Common::Serialization {

/// A read-only view of bytes: the unit in which payloads travel between the serialization and
/// messaging layers. Held through `std::unique_ptr<Buffer>`; whether destroying it releases the
/// bytes is the concrete class's business.
class Buffer {
public:
    virtual ~Buffer() = default;

    /// Start of the bytes; may be null when `Size()` is 0.
    virtual unsigned char* Pointer() const = 0;

    /// Number of bytes.
    virtual unsigned int Size() const = 0;
};

}  // namespace Korvo::Common::Serialization

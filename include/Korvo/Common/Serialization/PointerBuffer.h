#pragma once

#include <functional>
#include <memory>

#include <Korvo/Common/Serialization/Buffer.h>

namespace Korvo::Common::Serialization {

/// The `Buffer` implementation: a pointer and a size, optionally owning the bytes.
class PointerBuffer final : public Buffer {
public:
    using Deleter = std::function<void(unsigned char*)>;

    /// A view of bytes that stay the caller's; nothing is released on destruction.
    PointerBuffer(unsigned char* pointer, unsigned int size) noexcept;

    /// When `owned` is true, the destructor calls `deleter(pointer)` (if `pointer` is not null).
    PointerBuffer(unsigned char* pointer, unsigned int size, bool owned, Deleter deleter) noexcept;

    /// Releases owned bytes exactly once. An owning buffer without a deleter terminates the
    /// process, since a destructor may not throw.
    ~PointerBuffer() override;

    /// An owning buffer over bytes obtained with `malloc`, released with `free`. Ownership passes
    /// in even when this throws (`std::bad_alloc`): the bytes are freed before the exception
    /// leaves.
    static std::unique_ptr<PointerBuffer> AdoptMalloced(unsigned char* pointer, unsigned int size);

    PointerBuffer(const PointerBuffer&) = delete;
    PointerBuffer& operator=(const PointerBuffer&) = delete;

    unsigned char* Pointer() const override { return pointer; }
    unsigned int Size() const override { return size; }

private:
    unsigned char* pointer;
    unsigned int size;
    bool owned;
    Deleter deleter;
};

}  // namespace Korvo::Common::Serialization

#include <Korvo/Common/Serialization/PointerBuffer.h>

#include <cstdlib>
#include <exception>
#include <new>

namespace Korvo::Common::Serialization {

PointerBuffer::PointerBuffer(unsigned char* pointer, unsigned int size) noexcept
    : pointer(pointer), size(size), owned(false) {}

PointerBuffer::PointerBuffer(unsigned char* pointer, unsigned int size, bool owned,
                             Deleter deleter) noexcept
    : pointer(pointer), size(size), owned(owned), deleter(std::move(deleter)) {}

PointerBuffer::~PointerBuffer() {
    if (pointer != nullptr && owned) {
        if (!deleter) {
            std::terminate();
        }
        deleter(pointer);
    }
}

std::unique_ptr<PointerBuffer> PointerBuffer::AdoptMalloced(unsigned char* pointer,
                                                            unsigned int size) {
    PointerBuffer* buffer = new (std::nothrow)
        PointerBuffer(pointer, size, true, [](unsigned char* bytes) { std::free(bytes); });
    if (buffer == nullptr) {
        std::free(pointer);
        throw std::bad_alloc();
    }
    return std::unique_ptr<PointerBuffer>(buffer);
}

}  // namespace Korvo::Common::Serialization

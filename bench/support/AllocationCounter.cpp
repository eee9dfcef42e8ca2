#include "support/AllocationCounter.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

// glibc's own entry points: the replacements below count, then forward to them, so memory from
// either side may be released by the other.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* pointer, std::size_t size);
void __libc_free(void* pointer);
}

namespace {

std::atomic<std::uint64_t> allocations{0};

void Count() noexcept {
    allocations.fetch_add(1, std::memory_order_relaxed);
}

void* Allocate(std::size_t size) {
    Count();
    if (void* pointer = __libc_malloc(size == 0 ? 1 : size)) {
        return pointer;
    }
    throw std::bad_alloc();
}

}  // namespace

namespace Korvo::Bench {

std::uint64_t Allocations() noexcept {
    return allocations.load(std::memory_order_relaxed);
}

}  // namespace Korvo::Bench

extern "C" {

void* malloc(std::size_t size) {
    Count();
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    Count();
    return __libc_calloc(count, size);
}

void* realloc(void* pointer, std::size_t size) {
    Count();
    return __libc_realloc(pointer, size);
}

}  // extern "C"

void* operator new(std::size_t size) {
    return Allocate(size);
}

void* operator new[](std::size_t size) {
    return Allocate(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    Count();
    return __libc_malloc(size == 0 ? 1 : size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    Count();
    return __libc_malloc(size == 0 ? 1 : size);
}

void operator delete(void* pointer) noexcept {
    __libc_free(pointer);
}

void operator delete[](void* pointer) noexcept {
    __libc_free(pointer);
}

void operator delete(void* pointer, std::size_t) noexcept {
    __libc_free(pointer);
}

void operator delete[](void* pointer, std::size_t) noexcept {
    __libc_free(pointer);
}

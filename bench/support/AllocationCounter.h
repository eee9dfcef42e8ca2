#pragma once

// Counts heap allocations made anywhere in the benchmark process: this binary replaces the global
// operator new and the C allocation functions (malloc, calloc, realloc), which Thrift's memory
// buffers and ZeroMQ's messages call directly. Each call adds one; frees are not counted.

#include <cstdint>

namespace Korvo::Bench {

/// The number of allocations made by every thread since the process started.
std::uint64_t Allocations() noexcept;

}  // namespace Korvo::Bench

// Counts what the process allocates: link AllocationCount.cpp, which replaces the global `operator new`.
#pragma once

#include <cstddef>

namespace tessarin::bench {

/// Since the start of the process.
struct AllocationCount {
  std::size_t calls;
  std::size_t bytes;
};

AllocationCount allocationCount() noexcept;

} // namespace tessarin::bench

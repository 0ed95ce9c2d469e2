#include "AllocationCount.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace tessarin::bench {

namespace {
std::atomic<std::size_t> calls = 0;
std::atomic<std::size_t> bytes = 0;
} // namespace

AllocationCount allocationCount() noexcept {
  return {calls.load(std::memory_order_relaxed), bytes.load(std::memory_order_relaxed)};
}

} // namespace tessarin::bench

void* operator new(std::size_t size) {
  tessarin::bench::calls.fetch_add(1, std::memory_order_relaxed);
  tessarin::bench::bytes.fetch_add(size, std::memory_order_relaxed);
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

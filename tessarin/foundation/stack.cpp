#include "tessarin/foundation/stack.hpp"

#include "tessarin/foundation/sanitizer.hpp"

#if !TESSARIN_NO_FIBERS
#include <boost/context/fiber.hpp>
#include <boost/context/protected_fixedsize_stack.hpp>
#endif

#include <cstdint>
#include <exception>
#include <pthread.h>
#include <stdexcept>
#include <vector>

// The sanitizers have to be told of every switch to another stack.
#if TESSARIN_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#include <sanitizer/common_interface_defs.h>
#endif
#if TESSARIN_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

namespace nvf::detail {

namespace {

/// The stack that a thread runs on: its lowest address and the one behind its highest.
struct Bounds {
  std::uintptr_t low = 0;
  std::uintptr_t high = 0;
  [[nodiscard]] std::size_t size() const noexcept { return high - low; }
  [[nodiscard]] bool hasRoom(std::uintptr_t frame) const noexcept {
    return frame >= low && frame < high && frame - low >= stackReserve;
  }
};

constinit thread_local Bounds currentBounds;

Bounds boundsOfThread() noexcept {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return {};
  void* low = nullptr;
  std::size_t size = 0;
  const bool known = pthread_attr_getstack(&attributes, &low, &size) == 0;
  pthread_attr_destroy(&attributes);
  if (!known) return {};
  const auto address = reinterpret_cast<std::uintptr_t>(low);
  return {address, address + size};
}

#if !TESSARIN_NO_FIBERS
namespace context = boost::context;

/// Memory for segments. A few that were given up are kept for each thread, so that a walk that goes back and forth over
/// the border of a segment does not map memory each time.
class SegmentPool {
public:
  SegmentPool() { spare_.reserve(maxSpare); }
  SegmentPool(const SegmentPool&) = delete;
  SegmentPool& operator=(const SegmentPool&) = delete;
  ~SegmentPool() {
    for (context::stack_context& segment : spare_) allocator_.deallocate(segment);
  }

  context::stack_context take() {
    if (spare_.empty()) return allocator_.allocate();
    const context::stack_context segment = spare_.back();
    spare_.pop_back();
    return segment;
  }

  void give(context::stack_context& segment) noexcept {
    if (spare_.size() < maxSpare) {
      spare_.push_back(segment);
    } else {
      allocator_.deallocate(segment);
    }
  }

private:
  static constexpr std::size_t segmentSize = std::size_t{1024} * 1024;
  static constexpr std::size_t maxSpare = 2;
  context::protected_fixedsize_stack allocator_{segmentSize};
  std::vector<context::stack_context> spare_;
};

SegmentPool& segmentPool() {
  static thread_local SegmentPool pool;
  return pool;
}

/// Lends a segment of the pool to a fiber, which hands it back when it is done.
struct PooledStack {
  context::stack_context segment;
  context::stack_context allocate() const noexcept { return segment; }
  static void deallocate(context::stack_context& used) noexcept { segmentPool().give(used); }
};

#endif

#if TESSARIN_THREAD_SANITIZER && !TESSARIN_NO_FIBERS
class TsanFiber {
public:
  TsanFiber() : former_(__tsan_get_current_fiber()), fiber_(__tsan_create_fiber(0)) {}
  TsanFiber(const TsanFiber&) = delete;
  TsanFiber& operator=(const TsanFiber&) = delete;
  ~TsanFiber() { __tsan_destroy_fiber(fiber_); }
  void enter() const { __tsan_switch_to_fiber(fiber_, 0); }
  void leave() const { __tsan_switch_to_fiber(former_, 0); }

private:
  void* former_;
  void* fiber_;
};
#endif

} // namespace

bool stack_is_short() noexcept {
  const auto frame = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  if (currentBounds.hasRoom(frame)) [[likely]]
    return false;
  if (currentBounds.size() != 0) return true;
  currentBounds = boundsOfThread();
  return !currentBounds.hasRoom(frame);
}

#if TESSARIN_NO_FIBERS
void run_on_fresh_segment(void (*)(void*), void*) {
  throw std::length_error("the stack is too small for a nest of this depth, and there are no fibers on this system");
}
#else
void run_on_fresh_segment(void (*function)(void*), void* argument) {
  const context::stack_context segment = segmentPool().take();
  const auto top = reinterpret_cast<std::uintptr_t>(segment.sp);
  const Bounds former = currentBounds;
  const Bounds fresh{top - segment.size, top};
  std::exception_ptr failure;
#if TESSARIN_THREAD_SANITIZER
  const TsanFiber tsan;
#endif
#if TESSARIN_ADDRESS_SANITIZER
  void* fakeStack = nullptr;
  const void* formerBottom = nullptr;
  std::size_t formerSize = 0;
#endif

#if TESSARIN_ADDRESS_SANITIZER
  // The last frames of the segment's former use never returned, so their red zones are still marked.
  __asan_unpoison_memory_region(reinterpret_cast<const void*>(fresh.low), fresh.size());
#endif
  context::fiber fiber(std::allocator_arg, PooledStack{segment}, [&](context::fiber&& caller) {
#if TESSARIN_ADDRESS_SANITIZER
    __sanitizer_finish_switch_fiber(nullptr, &formerBottom, &formerSize);
#endif
    try {
      function(argument);
    } catch (...) {
      failure = std::current_exception();
    }
#if TESSARIN_THREAD_SANITIZER
    tsan.leave();
#endif
#if TESSARIN_ADDRESS_SANITIZER
    __sanitizer_start_switch_fiber(nullptr, formerBottom, formerSize);
#endif
    return std::move(caller);
  });

  currentBounds = fresh;
#if TESSARIN_ADDRESS_SANITIZER
  __sanitizer_start_switch_fiber(&fakeStack, reinterpret_cast<const void*>(fresh.low), fresh.size());
#endif
#if TESSARIN_THREAD_SANITIZER
  tsan.enter();
#endif
  fiber = std::move(fiber).resume();
#if TESSARIN_ADDRESS_SANITIZER
  __sanitizer_finish_switch_fiber(fakeStack, nullptr, nullptr);
#endif
  currentBounds = former;
  if (failure) std::rethrow_exception(failure);
}
#endif

} // namespace nvf::detail

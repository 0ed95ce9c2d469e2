// Recursion that cannot overflow the stack.
//
// Trees come from text that strangers wrote, and they nest as deep as the limit of the parser allows, on threads whose
// stacks may be small. A recursive walk passes its one point of recursion through `with_stack`, which looks at what is
// left of the stack and, where that is little, goes on with the call on a fresh segment of memory. The segment is given
// up when the call returns; to caller and callee it looks like a plain call on the same thread, exceptions included.
//
//   Depth depth(const Tree& tree) {
//     return nvf::with_stack([&] { return 1 + maximum(tree.children(), depth); });
//   }
#pragma once

#include "tessarin/export.hpp"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace nvf {

/// What `with_stack` leaves free, in bytes: a walk may use this much between two passes through it.
inline constexpr std::size_t stackReserve = std::size_t{128} * 1024;

namespace detail {
/// Whether less than `stackReserve` is left of the stack that this thread runs on.
TESSARIN_EXPORT bool stack_is_short() noexcept;
/// Calls `function(argument)` on a fresh segment. Throws what the function throws, `std::bad_alloc` where there is no
/// memory for a segment, and `std::length_error` where the library is built without fibers (TESSARIN_FIBERS).
TESSARIN_EXPORT void run_on_fresh_segment(void (*function)(void*), void* argument);
} // namespace detail

/// Calls `function` and returns what it returns, on this stack where it has room and on a fresh segment where it has
/// not. Safe from any thread, and from a stack that a host has switched to by itself.
template <class Function>
std::invoke_result_t<Function&> with_stack(Function&& function) {
  using Result = std::invoke_result_t<Function&>;
  if (!detail::stack_is_short()) [[likely]]
    return std::invoke(function);

  const auto run = [](auto& task) {
    using Task = std::remove_reference_t<decltype(task)>;
    detail::run_on_fresh_segment([](void* argument) { (*static_cast<Task*>(argument))(); }, std::addressof(task));
  };
  if constexpr (std::is_void_v<Result>) {
    auto task = [&function] { std::invoke(function); };
    run(task);
  } else if constexpr (std::is_reference_v<Result>) {
    std::remove_reference_t<Result>* result = nullptr;
    auto task = [&] { result = std::addressof(std::invoke(function)); };
    run(task);
    return static_cast<Result>(*result);
  } else {
    std::optional<Result> result;
    auto task = [&] { result.emplace(std::invoke(function)); };
    run(task);
    return *std::move(result);
  }
}

} // namespace nvf

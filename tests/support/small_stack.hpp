// Runs code on a thread with a small stack, so that a test shows that a walk does not need a large one.
#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <pthread.h>
#include <stdexcept>

namespace tessarin::test {

inline constexpr std::size_t smallStack = std::size_t{1024} * 1024;

/// Calls `function` on a thread with a stack of 1 MiB and waits for it; passes its exception on.
inline void onSmallStack(const std::function<void()>& function) {
  struct Task {
    const std::function<void()>& function;
    std::exception_ptr failure;
  } task{function, nullptr};
  const auto run = [](void* argument) -> void* {
    auto& self = *static_cast<Task*>(argument);
    try {
      self.function();
    } catch (...) {
      self.failure = std::current_exception();
    }
    return nullptr;
  };

  pthread_attr_t attributes;
  pthread_t thread{};
  if (pthread_attr_init(&attributes) != 0 || pthread_attr_setstacksize(&attributes, smallStack) != 0 ||
      pthread_create(&thread, &attributes, run, &task) != 0) {
    throw std::runtime_error("no thread with a small stack");
  }
  pthread_attr_destroy(&attributes);
  pthread_join(thread, nullptr);
  if (task.failure) std::rethrow_exception(task.failure);
}

} // namespace tessarin::test

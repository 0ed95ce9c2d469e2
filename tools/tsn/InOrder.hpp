// Work on several threads whose results are used in order.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <future>
#include <system_error>
#include <thread>
#include <vector>

namespace tessarin::tool {

/// Calls `work(i)` for each `i` below `count` on up to `workers` threads, and on this thread `use` with each result as
/// soon as those before it have been used. What it does is thus the same for any number of workers. Throws what `work`
/// and `use` throw.
template <class Work, class Use>
void forEachInOrder(std::size_t count, std::size_t workers, const Work& work, const Use& use) {
  workers = std::min(workers, count);
  if (workers <= 1) {
    for (std::size_t i = 0; i < count; ++i) use(work(i));
    return;
  }

  std::vector<std::promise<decltype(work(std::size_t{}))>> results(count);
  std::atomic<std::size_t> next = 0;
  const auto run = [&] {
    for (std::size_t i = next++; i < count; i = next++) {
      try {
        results[i].set_value(work(i));
      } catch (...) {
        results[i].set_exception(std::current_exception());
      }
    }
  };

  std::vector<std::jthread> threads;
  threads.reserve(workers);
  try {
    while (threads.size() < workers) threads.emplace_back(run);
  } catch (const std::system_error&) {
    // The system gives no more threads: those that there are do the work.
    if (threads.empty()) run();
  }
  for (auto& result : results) use(result.get_future().get());
}

} // namespace tessarin::tool

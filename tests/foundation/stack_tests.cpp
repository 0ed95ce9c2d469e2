#include "tessarin/foundation/stack.hpp"

#include "support/small_stack.hpp"

#include <gtest/gtest.h>

#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using nvf::with_stack;
using tessarin::test::onSmallStack;

/// Recursion with frames of some size that the compiler cannot turn into a loop.
std::size_t sum(std::size_t levels) { // NOLINT(misc-no-recursion)
  return with_stack([levels] {
    volatile char frame[300] = {};
    frame[levels % std::size(frame)] = 1;
    return levels == 0 ? std::size_t{0} : sum(levels - 1) + static_cast<std::size_t>(frame[levels % std::size(frame)]);
  });
}

[[noreturn]] void fail(std::size_t levels) { // NOLINT(misc-no-recursion)
  with_stack([levels] {
    if (levels == 0) throw std::runtime_error("from below");
    try {
      fail(levels - 1);
    } catch (const std::runtime_error& error) {
      // Rethrown on every thousandth level, so that unwinding and catching both cross segments.
      if (levels % 1000 == 0) throw std::runtime_error(error.what());
      throw;
    }
  });
  throw std::logic_error("not reached");
}

TEST(Stack, DeepRecursionNeedsNoLargeStack) {
  onSmallStack([] { EXPECT_EQ(sum(200'000), 200'000U); });
}

TEST(Stack, ThreadsDoNotDisturbEachOther) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] { EXPECT_EQ(sum(50'000), 50'000U); });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(Stack, ExceptionsPassThroughSegments) {
  onSmallStack([] {
    for (int repeat = 0; repeat < 3; ++repeat) {
      try {
        fail(20'000);
      } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "from below");
      }
      EXPECT_EQ(sum(20'000), 20'000U) << "the stack is whole after an exception";
    }
  });
}

TEST(Stack, ResultsOfEverySort) {
  // The results are asked for from the bottom of a deep recursion, so that some of them come from a fresh segment.
  struct Node {
    std::unique_ptr<Node> next;
  };
  const auto last = [](auto& self, Node& node) -> Node& {
    return with_stack([&]() -> Node& { return node.next ? self(self, *node.next) : node; });
  };
  const auto copy = [](auto& self, const Node& node) -> std::unique_ptr<Node> {
    return with_stack([&] {
      auto result = std::make_unique<Node>();
      if (node.next) result->next = self(self, *node.next);
      return result;
    });
  };
  onSmallStack([&] {
    Node first;
    Node* end = &first;
    std::size_t length = 50'000;
    for (std::size_t i = 0; i < length; ++i) end = (end->next = std::make_unique<Node>()).get();
    EXPECT_EQ(&last(last, first), end);
    std::unique_ptr<Node> copied = copy(copy, first);
    for (const Node* node = copied.get(); node->next; node = node->next.get()) --length;
    EXPECT_EQ(length, 0U);
    for (std::unique_ptr<Node>* list : {&first.next, &copied}) { // iteratively, for a node owns the next one
      while (*list) *list = std::move((*list)->next);
    }
  });
}

} // namespace
